#pragma once

#include <cstdint>
#include <filesystem>
#include <future>
#include <iostream>
#include <string>

#include <gtest/gtest.h>

#include "support/PrivateBus.h"
#include "support/ServiceClient.h"
#include "support/ServicePrefix.h"
#include "support/WaitUntil.h"
#include "tokens/TokenBed.h"
#include "tokens/VirtualToken.h"

namespace vantro::tests {

/// The real service on a private bus, started by the first call, with virtual tokens to plug in.
class ServiceFixture : public testing::Test
{
  protected:
    static lab::TokenSpecification tokenOf(std::uint32_t serial)
    {
        lab::TokenSpecification specification;
        specification.otp.serial = serial;
        specification.otp.slots[1].key = lab::SlotKey{1, 2, 3};
        return specification;
    }

    [[nodiscard]] std::filesystem::path recordOf(std::uint64_t serial) const
    {
        return prefix.records() / std::to_string(serial);
    }

    /// Whether the service's log has a line with this text by now or soon.
    [[nodiscard]] bool logSays(const std::string& text) const
    {
        return waitUntil([this, &text] { return bus.log().find(text) != std::string::npos; });
    }

    void TearDown() override
    {
        if (HasFailure())
            std::cerr << bus.log();
    }

    lab::TokenBed bed;
    ServicePrefix prefix;
    PrivateBus bus{prefix};
    ServiceClient client;
};

} // namespace vantro::tests
