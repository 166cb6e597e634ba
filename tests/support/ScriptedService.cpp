#include "support/ScriptedService.h"

#include <algorithm>
#include <poll.h>
#include <utility>

#include <sdbus-c++/sdbus-c++.h>

#include "VantroStandaloneXPCSupport/VantroStandaloneServiceProtocol.h"

namespace vantro::tests {
namespace {

using Clock = std::chrono::steady_clock;

struct Method
{
    const char* interface;
    const char* name;
    const char* argument;
    const char* value;
};

constexpr Method methods[] = {
    {label, service_method::getSerial, "", "t"},
    {label, service_method::createCRSettingFile, "t", "b"},
    {label, service_method::removeCRSettingFile, "t", "b"},
    {label, service_method::validate, "t", "b"},
    {label, service_method::savePamSetting, "ay", "b"},
    {label, service_method::removePamSetting, "ay", "b"},
    {diagnosisInterface, service_method::lastFailure, "", "s"},
};

} // namespace

struct ScriptedService::Pending
{
    Clock::time_point due;
    Answer answer;
    sdbus::MethodCall call;

    void send() const
    {
        if (std::holds_alternative<Refusal>(answer.content)) {
            call.createErrorReply(sdbus::Error(std::get<Refusal>(answer.content).name, "The request was refused."))
                .send();
            return;
        }
        auto reply = call.createReply();
        if (const auto* const flag = std::get_if<bool>(&answer.content))
            reply << *flag;
        else if (const auto* const number = std::get_if<std::uint64_t>(&answer.content))
            reply << *number;
        else if (const auto* const text = std::get_if<std::string>(&answer.content))
            reply << *text;
        reply.send();
    }
};

ScriptedService::ScriptedService()
{
    for (const Method& method : tests::methods)
        answers_[method.name] = {{true}};
    answers_[service_method::getSerial] = {{std::uint64_t{1}}};
    answers_[service_method::lastFailure] = {{std::string()}};
    thread_ = std::thread([this] { run(); });
    started_.get_future().wait();
}

ScriptedService::~ScriptedService()
{
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
    }
    wakeEvent_.wake();
    thread_.join();
}

void ScriptedService::run()
{
    const auto connection = sdbus::createSystemBusConnection();
    const auto object = sdbus::createObject(*connection, serviceObjectPath);
    for (const Method& method : tests::methods)
        object->registerMethod(method.interface, method.name, method.argument, method.value,
                               [this, name = method.name](const sdbus::MethodCall& call) { take(name, call); });
    object->finishRegistration();
    connection->requestName(label);
    started_.set_value();

    try {
        for (;;) {
            while (connection->processPendingRequest())
                continue;
            sendDue();
            const auto bus = connection->getEventLoopPollData();
            int timeout = bus.getPollTimeout();
            for (const Pending& pending : pending_) {
                const auto left = std::chrono::ceil<std::chrono::milliseconds>(pending.due - Clock::now()).count();
                const int wait = static_cast<int>(std::max<std::int64_t>(left, 0));
                timeout = timeout < 0 ? wait : std::min(timeout, wait);
            }
            pollfd polled[] = {{wakeEvent_.fileDescriptor(), POLLIN, 0}, {bus.fd, bus.events, 0}};
            ::poll(polled, std::size(polled), timeout);
            const std::lock_guard lock(mutex_);
            if (isStopping_)
                break;
        }
    } catch (const sdbus::Error&) {
        // The bus has gone, and nobody asks any more.
        pending_.clear();
        return;
    }
    pending_.clear();
}

void ScriptedService::take(const std::string& method, const sdbus::MethodCall& received)
{
    sdbus::MethodCall call = received;
    Call record{method, 0, {}};
    if (method == service_method::savePamSetting || method == service_method::removePamSetting) {
        std::vector<std::uint8_t> archive;
        call >> archive;
        record.setting = PamSetting::unarchived(archive).value_or(PamSetting());
    } else if (method != service_method::getSerial && method != service_method::lastFailure) {
        call >> record.serial;
    }
    const std::lock_guard lock(mutex_);
    if (method != service_method::lastFailure)
        calls_.push_back(std::move(record));
    auto& answers = answers_[method];
    const Answer answer = answers.front();
    if (answers.size() > 1)
        answers.pop_front();
    if (!std::holds_alternative<Silence>(answer.content))
        pending_.push_back({Clock::now() + answer.delay, answer, call});
}

void ScriptedService::sendDue()
{
    const auto now = Clock::now();
    const auto due = std::stable_partition(pending_.begin(), pending_.end(),
                                           [now](const Pending& pending) { return pending.due > now; });
    std::for_each(due, pending_.end(), [](const Pending& pending) { pending.send(); });
    pending_.erase(due, pending_.end());
}

void ScriptedService::script(const std::string& method, std::deque<Answer> answers)
{
    const std::lock_guard lock(mutex_);
    answers_[method] = std::move(answers);
}

std::vector<ScriptedService::Call> ScriptedService::calls() const
{
    const std::lock_guard lock(mutex_);
    return calls_;
}

std::vector<std::string> ScriptedService::methods() const
{
    std::vector<std::string> names;
    for (const Call& call : calls())
        names.push_back(call.method);
    return names;
}

std::vector<std::string> ScriptedService::pamCalls() const
{
    std::vector<std::string> texts;
    for (const Call& call : calls())
        if (call.method == service_method::savePamSetting)
            texts.push_back(call.setting.fileName + ":" + std::to_string(static_cast<int>(call.setting.controlFlag)));
    return texts;
}

void ScriptedService::forgetCalls()
{
    const std::lock_guard lock(mutex_);
    calls_.clear();
}

} // namespace vantro::tests
