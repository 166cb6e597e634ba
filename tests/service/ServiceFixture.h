#pragma once

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <string>

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
