#pragma once

#include "support/BusDaemon.h"

namespace vantro::tests {

/// A bus on which everybody may do everything and nothing is started on demand.
class PlainBus : public BusDaemon
{
  public:
    PlainBus()
        : BusDaemon("<policy context=\"default\"><allow user=\"*\"/><allow own=\"*\"/><allow send_destination=\"*\"/>"
                    "<allow receive_sender=\"*\"/></policy>")
    {
    }
};

} // namespace vantro::tests
