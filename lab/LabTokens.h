#pragma once

#include <memory>
#include <string>
#include <vector>

#include "emulation/VirtualToken.h"

namespace vantro::lab {

/// A token on the lab's table.
struct LabToken
{
    /// What it is good for, in a few words.
    std::string description;
    std::unique_ptr<VirtualToken> token;
};

/// The tokens that lie on the table when the lab opens, those of labProfiles(), none plugged in.
[[nodiscard]] std::vector<LabToken> makeLabTokens(TokenBed& bed);

} // namespace vantro::lab
