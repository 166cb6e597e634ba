#include "VantroStandaloneSetting/VantroStandaloneSetting.h"

#include <algorithm>
#include <compare>

#include "foundation/Sorting.h"
#include "foundation/Text.h"

namespace vantro {
namespace {

void sortBySerial(std::vector<YubiKey>& keys)
{
    sortStably(keys, [](const YubiKey& left, const YubiKey& right) { return left.serial < right.serial; });
}

template <class Users>
auto firstUser(Users& users, std::string_view account)
{
    return std::find_if(users.begin(), users.end(),
                        [account](const UserSetting& user) { return isCanonicallyEqual(user.account, account); });
}

std::size_t userKeyCount(const std::vector<UserSetting>& users)
{
    std::size_t count = 0;
    for (const UserSetting& user : users)
        count += user.keys.size();
    return count;
}

} // namespace

bool containsSerial(const std::vector<YubiKey>& keys, std::uint64_t serial)
{
    return std::find(keys.begin(), keys.end(), serial) != keys.end();
}

void addSorted(std::vector<YubiKey>& keys, std::uint64_t serial)
{
    keys.emplace_back(serial);
    sortBySerial(keys);
}

void removeSerial(std::vector<YubiKey>& keys, std::uint64_t serial)
{
    std::erase(keys, serial);
}

bool VantroStandaloneSetting::isAllocatedKey() const
{
    return !masterKeySetting.masterKeys.empty() || userKeyCount(users) > 0;
}

bool VantroStandaloneSetting::isNamed(std::uint64_t serial) const
{
    return containsSerial(masterKeySetting.masterKeys, serial) || containsSerial(adminSetting.adminKeys, serial) ||
           std::any_of(users.begin(), users.end(),
                       [serial](const UserSetting& user) { return containsSerial(user.keys, serial); });
}

const UserSetting* VantroStandaloneSetting::user(std::string_view account) const
{
    const auto found = firstUser(users, account);
    return found == users.end() ? nullptr : &*found;
}

bool VantroStandaloneSetting::isAllcatedUserKey(std::string_view account, std::uint64_t serial) const
{
    const UserSetting* const entry = user(account);
    return entry != nullptr && containsSerial(entry->keys, serial);
}

void VantroStandaloneSetting::addUserKey(std::string_view account, std::uint64_t serial)
{
    auto entry = firstUser(users, account);
    if (entry == users.end())
        entry = users.insert(entry, UserSetting(std::string(account)));
    entry->keys.emplace_back(serial);
    sortStably(users, [](const UserSetting& left, const UserSetting& right) {
        return std::is_lt(compareCanonically(left.account, right.account));
    });
    for (UserSetting& user : users)
        sortBySerial(user.keys);
}

void VantroStandaloneSetting::removeUserKey(std::string_view account, std::uint64_t serial)
{
    if (const auto entry = firstUser(users, account); entry != users.end())
        removeSerial(entry->keys, serial);
}

void VantroStandaloneSetting::removeUsersWithoutKeys()
{
    std::erase_if(users, [](const UserSetting& user) { return user.keys.empty(); });
}

bool VantroStandaloneSetting::areLastUserKeys(std::size_t count) const
{
    return switchSetting.secureMode && masterKeySetting.masterKeys.empty() && count == userKeyCount(users);
}

bool VantroStandaloneSetting::areLastMasterKeys(std::size_t count) const
{
    return switchSetting.secureMode && users.empty() && count == masterKeySetting.masterKeys.size();
}

bool VantroStandaloneSetting::areLastAdminKeys(std::size_t count) const
{
    return adminSetting.toolLoginAuth && count == adminSetting.adminKeys.size();
}

} // namespace vantro
