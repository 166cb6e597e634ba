#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <sdbus-c++/sdbus-c++.h>

namespace vantro::lab {

/// Answers for logind on the system bus of this process, as far as somebody who locks screens asks: which sessions
/// there are, and to lock or unlock one. What it offers is named as in the manual page org.freedesktop.login1(5). It
/// answers on a thread of its own; all else any thread.
class StandInLogind
{
  public:
    struct Session
    {
        /// Made of letters and digits.
        std::string id;
        std::uint32_t userId = 0;
        std::string user;
        std::string type = "x11";
        std::string sessionClass = "user";
        std::string state = "active";
    };

    /// `onChange` is called on the answering thread whenever a session has been locked or unlocked. Throws sdbus::Error
    /// where the bus does not give it the name.
    explicit StandInLogind(const std::vector<Session>& sessions, std::function<void()> onChange = {});
    ~StandInLogind();
    StandInLogind(const StandInLogind&) = delete;
    StandInLogind& operator=(const StandInLogind&) = delete;

    [[nodiscard]] bool isLocked(const std::string& id) const;
    /// As the locker does when somebody has signed in again.
    void unlock(const std::string& id) { setIsLocked(id, false); }

  private:
    void addManager(const std::vector<Session>& sessions);
    void addSession(const Session& session);
    void setIsLocked(const std::string& id, bool isLocked);

    const std::function<void()> onChange_;
    mutable std::mutex mutex_;
    std::map<std::string, bool> isLocked_;
    std::unique_ptr<sdbus::IConnection> connection_;
    std::vector<std::unique_ptr<sdbus::IObject>> objects_;
    std::jthread thread_;
};

} // namespace vantro::lab
