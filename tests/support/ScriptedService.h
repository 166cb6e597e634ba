#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <future>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "VantroStandaloneSetting/PamSetting.h"
#include "foundation/WakeEvent.h"

namespace sdbus {
class MethodCall;
} // namespace sdbus

namespace vantro::tests {

/// A double of the privileged service on the system bus: answers each of its methods as it is told and keeps what it
/// was asked. It lives on a thread and a connection of its own, and takes a call while another one still waits for
/// its answer. Every member may be called on any thread.
class ScriptedService
{
  public:
    /// Answers with an error reply.
    struct Refusal
    {
        const char* name = "com.vantro.Standalone1.Error.Refused";
    };
    /// Never answers.
    struct Silence
    {
    };

    /// The value of an answer has the type that the method promises.
    struct Answer
    {
        std::variant<bool, std::uint64_t, std::string, Refusal, Silence> content;
        std::chrono::milliseconds delay{0};
    };

    struct Call
    {
        std::string method;
        std::uint64_t serial = 0;
        PamSetting setting;
    };

    /// Returns when the name is owned. Until told otherwise every method answers true, GetSerial 1, and
    /// LastFailure that nothing is known.
    ScriptedService();
    /// Leaves the bus; calls that wait for an answer get none.
    ~ScriptedService();
    ScriptedService(const ScriptedService&) = delete;
    ScriptedService& operator=(const ScriptedService&) = delete;

    /// Answers `method` with these answers, one after the other; the last one stays.
    void script(const std::string& method, std::deque<Answer> answers);

    /// The calls so far but those of LastFailure, in order; a setting that could not be decoded is left at its default.
    [[nodiscard]] std::vector<Call> calls() const;
    /// The methods of the calls so far.
    [[nodiscard]] std::vector<std::string> methods() const;
    /// The calls of SavePamSetting so far, as "name:position of the control flag".
    [[nodiscard]] std::vector<std::string> pamCalls() const;
    void forgetCalls();

  private:
    struct Pending;

    void run();
    void take(const std::string& method, const sdbus::MethodCall& received);
    void sendDue();

    mutable std::mutex mutex_;
    std::map<std::string, std::deque<Answer>> answers_;
    std::vector<Call> calls_;
    bool isStopping_ = false;
    std::promise<void> started_;

    WakeEvent wakeEvent_;
    /// The thread's alone.
    std::vector<Pending> pending_;
    std::thread thread_;
};

} // namespace vantro::tests
