#pragma once

#include <filesystem>
#include <string>

#include <sys/types.h>

#include "support/TemporaryFolder.h"

namespace vantro::tests {

/// A message bus of the test's own. DBUS_SYSTEM_BUS_ADDRESS of this process names the last one that was started.
class BusDaemon
{
  public:
    /// `rules` is what the configuration holds beside the socket and the authentication; a "{}" in it stands for the
    /// bus's folder. Throws when the bus does not come up.
    explicit BusDaemon(std::string rules);
    /// Ends the bus, if end() has not.
    ~BusDaemon();
    BusDaemon(const BusDaemon&) = delete;
    BusDaemon& operator=(const BusDaemon&) = delete;

    [[nodiscard]] const std::string& address() const { return address_; }
    /// Where the socket and the configuration lie.
    [[nodiscard]] const std::filesystem::path& folder() const { return folder_.path(); }
    /// What the bus and the programs that it started wrote so far.
    [[nodiscard]] std::string log() const { return contentOf(folder_ / "log"); }
    [[nodiscard]] bool isRunning() const { return daemon_ >= 0; }

    /// Ends the bus at once and waits for it; every connection to it is lost in the same moment.
    void end();

  private:
    TemporaryFolder folder_;
    std::string address_;
    pid_t daemon_ = -1;
};

} // namespace vantro::tests
