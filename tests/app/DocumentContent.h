#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

namespace vantro::tests {

using Serials = std::vector<std::uint64_t>;

/// What a settings document holds, as plain values to write down and compare.
struct DocumentContent
{
    std::vector<std::pair<std::string, Serials>> users = {};
    Serials masterKeys = {};
    Serials adminKeys = {};
    bool secureMode = false;
    bool screenLock = false;
    bool toolLoginAuth = false;

    bool operator==(const DocumentContent&) const = default;

    [[nodiscard]] static DocumentContent of(const VantroStandaloneSetting& setting);
    [[nodiscard]] VantroStandaloneSetting asDocument() const;
};

std::ostream& operator<<(std::ostream& stream, const DocumentContent& content);

} // namespace vantro::tests
