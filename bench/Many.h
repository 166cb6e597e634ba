#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/types.h>

#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

namespace vantro::bench {

/// The most accounts that accountsOf() gives.
inline constexpr std::size_t accountLimit = 10'000;

/// The name of an account; their order is that of the numbers.
[[nodiscard]] inline std::string accountName(std::size_t number)
{
    constexpr std::size_t sameLength = 1'000'000;
    return "account" + std::to_string(sameLength + number);
}

/// A document with the user keys 1 to `count`, ten an account, all in order.
[[nodiscard]] inline VantroStandaloneSetting documentOf(std::size_t count)
{
    VantroStandaloneSetting setting;
    for (std::uint64_t key = 1; key <= count; ++key) {
        if (key % 10 == 1)
            setting.users.emplace_back(accountName(key));
        setting.users.back().keys.emplace_back(key);
    }
    return setting;
}

/// The accounts of a machine as a passwd file: the one named `own`, and `count` others, accountLimit at most, which are
/// local people's and bear the names of documentOf().
[[nodiscard]] inline std::string accountsOf(const std::string& own, uid_t ownId, std::size_t count)
{
    constexpr std::size_t firstId = 1000;
    std::string passwd = own + ":x:" + std::to_string(ownId) + ":100:Test Person:/:/bin/sh\n";
    for (std::size_t number = 1; number <= std::min(count, accountLimit); ++number)
        passwd += accountName(number) + ":x:" + std::to_string(firstId + number) + ":100:Person " +
                  std::to_string(number) + ":/:/bin/sh\n";
    return passwd;
}

} // namespace vantro::bench
