#pragma once

#include <string>

#include <sys/types.h>

#include "support/TemporaryFolder.h"

namespace vantro::tests {

/// A message bus of the test's own on which everybody may do everything and nothing is started on demand.
/// DBUS_SYSTEM_BUS_ADDRESS of this process names it.
class PlainBus
{
  public:
    /// Throws when the bus does not come up.
    PlainBus();
    /// Ends the bus, if end() has not.
    ~PlainBus();
    PlainBus(const PlainBus&) = delete;
    PlainBus& operator=(const PlainBus&) = delete;

    /// Ends the bus at once and waits for it; every connection to it is lost in the same moment.
    void end();

  private:
    TemporaryFolder folder_;
    pid_t daemon_ = -1;
};

} // namespace vantro::tests
