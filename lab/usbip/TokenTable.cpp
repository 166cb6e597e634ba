#include "usbip/TokenTable.h"

#include <algorithm>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "emulation/LabProfiles.h"

namespace vantro::lab::usbip {

TokenTable::TokenTable()
{
    for (LabProfile& profile : labProfiles()) {
        const PluggedToken::Mood mood{false, profile.token.transferTime};
        entries_.push_back(std::make_unique<Entry>(Entry{UsbToken(std::move(profile.token)), mood, std::nullopt}));
    }
}

TokenTable::Entry& TokenTable::find(const std::string& serial)
{
    for (const auto& entry : entries_) {
        if (std::to_string(entry->token.profile().otp.serial) == serial) {
            return *entry;
        }
    }
    throw std::runtime_error("there is no token " + serial);
}

std::string TokenTable::command(const std::string& line)
try {
    std::istringstream words(line);
    std::string verb;
    std::string serial;
    words >> verb >> serial;
    if (verb == "list") {
        return "ok\n" + list();
    }
    Entry& entry = find(serial);
    if (verb == "plug") {
        if (!entry.plugged) {
            entry.plugged.emplace(entry.token, entry.mood);
        }
    } else if (verb == "unplug") {
        entry.plugged.reset();
    } else if (verb == "touch") {
        entry.token.touch();
    } else if (verb == "hang" || verb == "recover") {
        entry.mood.isHung = verb == "hang";
    } else if (unsigned int milliseconds = 0; verb == "delay" && words >> milliseconds) {
        entry.mood.transferTime = std::chrono::milliseconds(milliseconds);
    } else {
        return "error: not understood: " + line;
    }
    return "ok";
} catch (const std::exception& error) {
    return std::string("error: ") + error.what();
}

std::string TokenTable::list() const
{
    std::ostringstream lines;
    for (const auto& entry : entries_) {
        lines << entry->token.profile().otp.serial << (entry->plugged ? " plugged-in" : " out")
              << (entry->token.isWaitingForTouch() ? " blinks\n" : "\n");
    }
    return lines.str();
}

void TokenTable::addTo(std::vector<pollfd>& polled) const
{
    for (const auto& entry : entries_) {
        if (entry->plugged) {
            polled.push_back({entry->plugged->descriptor(), POLLIN, 0});
        }
    }
}

void TokenTable::serve(const std::vector<pollfd>& polled)
{
    for (const auto& entry : entries_) {
        if (!entry->plugged) {
            continue;
        }
        entry->plugged->sendDue(PluggedToken::Clock::now());
        const bool hasCome = std::any_of(polled.begin(), polled.end(), [&entry](const pollfd& one) {
            return one.fd == entry->plugged->descriptor() && one.revents != 0;
        });
        if (hasCome && !entry->plugged->serve()) {
            entry->plugged.reset();
        }
    }
}

int TokenTable::pause() const
{
    std::optional<PluggedToken::Clock::time_point> next;
    for (const auto& entry : entries_) {
        const auto due = entry->plugged ? entry->plugged->nextDue() : std::nullopt;
        if (due && (!next || *due < *next)) {
            next = due;
        }
    }
    if (!next) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*next - PluggedToken::Clock::now());
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
}

} // namespace vantro::lab::usbip
