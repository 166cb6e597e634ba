#include "SignInCall.h"

#include <cerrno>
#include <cstring>
#include <ctime>

#include <systemd/sd-bus.h>

#include "VantroStandaloneNames.h"

namespace vantro::module {
namespace {

constexpr std::uint64_t second = 1000000;
/// The service may need some seconds beyond the wait for a token, for one that wants a touch above all.
constexpr std::uint64_t answerReserve = 18 * second;
constexpr std::uint64_t endReserve = 20 * second;

/// Since the machine was started, in microseconds.
std::uint64_t now()
{
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<std::uint64_t>(time.tv_sec) * second + static_cast<std::uint64_t>(time.tv_nsec) / 1000;
}

/// What one call knows; the bus' callbacks get at it.
struct Call
{
    const Conversation& conversation;
    Outcome outcome = Outcome::Unavailable;
    bool isOver = false;

    void end(Outcome result)
    {
        outcome = result;
        isOver = true;
    }
};

struct Word
{
    const char* word;
    Outcome outcome;
};
constexpr Word words[] = {{names::sign_in::accepted, Outcome::Accepted},
                          {names::sign_in::notDemanded, Outcome::NotDemanded},
                          {names::sign_in::noToken, Outcome::NoToken},
                          {names::sign_in::refused, Outcome::Refused},
                          {names::sign_in::unknownAccount, Outcome::UnknownAccount}};

Outcome outcomeOf(const char* answer)
{
    for (const auto& [word, outcome] : words)
        if (std::strcmp(word, answer) == 0)
            return outcome;
    return Outcome::Unavailable;
}

int onAnswer(sd_bus_message* answer, void* data, sd_bus_error* /*error*/)
{
    auto& call = *static_cast<Call*>(data);
    const char* word = nullptr;
    const bool isRead =
        sd_bus_message_is_method_error(answer, nullptr) <= 0 && sd_bus_message_read(answer, "s", &word) > 0;
    call.end(isRead ? outcomeOf(word) : Outcome::Unavailable);
    return 0;
}

int onWanted(sd_bus_message* signal, void* data, sd_bus_error* /*error*/)
{
    auto& call = *static_cast<Call*>(data);
    const char* what = nullptr;
    if (call.isOver || sd_bus_message_read(signal, "s", &what) <= 0)
        return 0;
    bool isListening = true;
    if (std::strcmp(what, names::sign_in::plugIn) == 0)
        isListening = call.conversation.inform(Text::PlugIn);
    else if (std::strcmp(what, names::sign_in::touch) == 0)
        isListening = call.conversation.inform(Text::Touch);
    if (!isListening)
        call.end(Outcome::Cancelled);
    return 0;
}

/// Sends the question; false when that can't be done.
bool send(sd_bus* bus, const char* account, std::uint32_t waitSeconds, Call& call)
{
    sd_bus_message* question = nullptr;
    bool isSent =
        sd_bus_match_signal_async(bus, nullptr, names::service, names::serviceObject, names::sign_in::interface,
                                  names::sign_in::wanted, onWanted, nullptr, &call) >= 0 &&
        sd_bus_message_new_method_call(bus, &question, names::service, names::serviceObject, names::sign_in::interface,
                                       names::sign_in::authenticate) >= 0;
    isSent = isSent && sd_bus_message_append(question, "su", account, waitSeconds) >= 0 &&
             sd_bus_call_async(bus, nullptr, question, onAnswer, &call, waitSeconds * second + answerReserve) >= 0;
    sd_bus_message_unref(question);
    return isSent;
}

/// Does what the bus has until the call is over, and no longer than until `deadline`.
void await(sd_bus* bus, const Call& call, std::uint64_t deadline)
{
    while (!call.isOver) {
        // Looked at in each turn: what somebody else sends without end must not hold the sign-in up.
        const std::uint64_t time = now();
        if (time >= deadline)
            return;
        const int processed = sd_bus_process(bus, nullptr);
        if (processed < 0)
            return;
        if (processed > 0)
            continue;
        // A signal that the program handles is no reason to end.
        const int waited = sd_bus_wait(bus, deadline - time);
        if (waited < 0 && waited != -EINTR)
            return;
    }
}

} // namespace

Outcome askService(const char* account, std::uint32_t waitSeconds, const Conversation& conversation)
{
    const std::uint64_t deadline = now() + waitSeconds * second + endReserve;
    Call call{conversation};
    sd_bus* bus = nullptr;
    if (sd_bus_open_system(&bus) < 0)
        return Outcome::Unavailable;
    // What was sent must not stay behind unseen, and what is still to be read is of no interest: closed, not flushed.
    if (send(bus, account, waitSeconds, call))
        await(bus, call, deadline);
    sd_bus_close_unref(bus);
    return call.outcome;
}

} // namespace vantro::module
