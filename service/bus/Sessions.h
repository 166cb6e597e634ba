#pragma once

#include <condition_variable>
#include <mutex>
#include <set>
#include <thread>

#include <sys/types.h>

#include "LoggerManager/Logger.h"

namespace vantro::service {

/// The graphical sessions that logind knows (org.freedesktop.login1 on the system bus). Asks it on a thread and a
/// connection of its own, made where they are needed: one that hangs, or is not there, holds nobody up. Any thread.
class Sessions
{
  public:
    explicit Sessions(const Logger& logger);

    /// Has the account's graphical sessions locked soon. What fails is in the log.
    void lock(uid_t user);

  private:
    void serve(const std::stop_token& stop);

    const Logger logger_;
    std::mutex mutex_;
    std::condition_variable_any isWanted_;
    std::set<uid_t> wanted_;
    std::jthread thread_;
};

} // namespace vantro::service
