#pragma once

#include <string>
#include <vector>

#include "emulation/TokenProfile.h"

namespace vantro::lab {

/// What a token of the lab is like.
struct LabProfile
{
    /// What it is good for, in a few words.
    std::string description;
    TokenProfile token;
};

/// The lab's tokens: two that work, one without a secret, one that wants a touch.
[[nodiscard]] std::vector<LabProfile> labProfiles();

} // namespace vantro::lab
