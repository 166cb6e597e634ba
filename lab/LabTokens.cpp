#include "LabTokens.h"

#include "emulation/LabProfiles.h"

namespace vantro::lab {

std::vector<LabToken> makeLabTokens(TokenBed& bed)
{
    std::vector<LabToken> tokens;
    for (LabProfile& profile : labProfiles()) {
        tokens.push_back(
            {std::move(profile.description), std::make_unique<VirtualToken>(bed, std::move(profile.token))});
    }
    return tokens;
}

} // namespace vantro::lab
