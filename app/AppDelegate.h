#pragma once

#include "LoggerManager/Logger.h"
#include "appkit/NSApplication.h"

namespace vantro {

/// The application's delegate: brings the shared data set into being before any window, writes the launch record, and
/// ends the process with its last window, or before any, when the settings document can't be read.
class AppDelegate : public NSApplicationDelegate
{
  public:
    AppDelegate();

    void applicationDidFinishLaunching() override;
    bool applicationShouldTerminateAfterLastWindowClosed() override;

  private:
    const Logger logger;
};

} // namespace vantro
