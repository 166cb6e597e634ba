#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

#include <algorithm>

namespace vantro {

bool VantroStandaloneSetting::isAllocatedKey() const
{
    return !masterKeySetting.masterKeys.empty() ||
           std::any_of(users.begin(), users.end(), [](const UserSetting& user) { return !user.keys.empty(); });
}

} // namespace vantro
