#pragma once

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <future>
#include <iostream>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "emulation/TokenBed.h"
#include "emulation/VirtualToken.h"
#include "support/PrivateBus.h"
#include "support/ServiceClient.h"
#include "support/ServicePrefix.h"
#include "support/WaitUntil.h"

namespace vantro::tests {

/// A token whose second slot is programmed.
inline lab::TokenProfile tokenOf(std::uint32_t serial)
{
    lab::TokenProfile profile;
    profile.otp.serial = serial;
    profile.otp.slots[1].key = lab::SlotKey{1, 2, 3};
    return profile;
}

/// The same, whose slot wants a touch.
inline lab::TokenProfile blinkingTokenOf(std::uint32_t serial)
{
    auto profile = tokenOf(serial);
    profile.otp.slots[1].needsTouch = true;
    return profile;
}

/// A token with the serial, whose second slot has another secret.
inline lab::TokenProfile forgedTokenOf(std::uint32_t serial)
{
    auto profile = tokenOf(serial);
    profile.otp.slots[1].key = lab::SlotKey{3, 2, 1};
    return profile;
}

/// What a shell command prints, errors included; outside of the emulation.
inline std::string outputOf(const std::string& command)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(("unset LD_PRELOAD; " + command + " 2>&1").c_str(), "r"),
                                                     ::pclose);
    std::string output;
    for (int character = 0; pipe && (character = std::fgetc(pipe.get())) != EOF;)
        output += static_cast<char>(character);
    return output;
}

/// The same, run as "nobody", with groups as setpriv is told them. Needs root.
inline std::string saidByNobody(const std::string& command, const std::string& groups = "--clear-groups")
{
    return outputOf("setpriv --reuid=65534 --regid=65534 " + groups + " " + command);
}

/// The real service on a private bus, started by the first call, with virtual tokens to plug in.
class ServiceFixture : public testing::Test
{
  protected:
    [[nodiscard]] std::filesystem::path recordOf(std::uint64_t serial) const
    {
        return prefix.records() / std::to_string(serial);
    }

    /// Whether the service's log has a line with this text by now or soon.
    [[nodiscard]] bool logSays(const std::string& text) const
    {
        return waitUntil([this, &text] { return bus.log().find(text) != std::string::npos; });
    }

    /// How often the service's log has this text by now.
    [[nodiscard]] int timesLogged(const std::string& text) const
    {
        const std::string log = bus.log();
        int times = 0;
        for (auto at = log.find(text); at != std::string::npos; at = log.find(text, at + text.size()))
            ++times;
        return times;
    }

    /// Whether the service has the device node open by now or soon: it is in the middle of an exchange.
    [[nodiscard]] bool opens(const std::string& deviceNode) const
    {
        const auto process = bus.servicePid();
        return process && waitUntil([&] {
                   std::error_code error;
                   for (const auto& entry :
                        std::filesystem::directory_iterator("/proc/" + std::to_string(*process) + "/fd", error))
                       if (std::filesystem::read_symlink(entry, error).string().ends_with(deviceNode))
                           return true;
                   return false;
               });
    }

    /// Makes a request on a thread of its own, and answers it when the token waits for a touch.
    template <class Request>
    [[nodiscard]] static auto whenBlinking(const lab::VirtualToken& token, Request request)
    {
        auto answer = std::async(std::launch::async, std::move(request));
        EXPECT_TRUE(waitUntil([&token] { return token.isWaitingForTouch(); }));
        return answer;
    }

    void TearDown() override
    {
        if (const auto status = bus.endService(SIGTERM)) {
            EXPECT_EQ(*status, 0) << "the service ends cleanly";
        }
        EXPECT_EQ(bus.log().find("Sanitizer"), std::string::npos);
        if (HasFailure())
            std::cerr << bus.log();
    }

    lab::TokenBed bed;
    ServicePrefix prefix;
    PrivateBus bus{prefix};
    ServiceClient client;
};

} // namespace vantro::tests
