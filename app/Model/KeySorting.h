#pragma once

#include <algorithm>
#include <compare>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "Model/KeyModels.h"
#include "VantroStandaloneSetting/VantroStandaloneSetting.h"
#include "appkit/KeyValueArray.h"
#include "foundation/Text.h"

namespace vantro {

/// The orders in which the document and the lists keep their entries. Every sort is stable. Main thread.

inline void sortBySerial(std::vector<YubiKey>& keys)
{
    std::stable_sort(keys.begin(), keys.end(),
                     [](const YubiKey& left, const YubiKey& right) { return left.serial < right.serial; });
}

/// By the code points of the account's NFC form; no locale, no case folding.
inline void sortByAccount(std::vector<UserSetting>& users)
{
    std::stable_sort(users.begin(), users.end(), [](const UserSetting& left, const UserSetting& right) {
        return std::is_lt(compareCanonically(left.account, right.account));
    });
}

/// Rows by their serial.
template <class Row>
void sortRows(std::vector<Row>& rows)
{
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& left, const Row& right) { return left.serialUInt() < right.serialUInt(); });
}

/// Rows by account as the document's users, then by serial.
inline void sortRows(std::vector<UserKeyModel>& rows)
{
    std::stable_sort(rows.begin(), rows.end(), [](const UserKeyModel& left, const UserKeyModel& right) {
        const auto order = compareCanonically(left.account(), right.account());
        return std::is_neq(order) ? std::is_lt(order) : left.serialUInt() < right.serialUInt();
    });
}

/// Stores the rows with one more row, and then once more in their order.
template <class Row>
void appendSorted(KeyValueArray<Row>& property, Row row)
{
    property.append(std::move(row));
    auto rows = property.take();
    sortRows(rows);
    property.set(std::move(rows));
}

/// Adds a key in the order of the serials.
inline void addSorted(std::vector<YubiKey>& keys, std::uint64_t serial)
{
    keys.emplace_back(serial);
    sortBySerial(keys);
}

/// Removes every key with the serial; the others keep their order.
inline void removeSerial(std::vector<YubiKey>& keys, std::uint64_t serial)
{
    std::erase_if(keys, [serial](const YubiKey& key) { return key.serial == serial; });
}

/// Whether any of the keys has the serial.
[[nodiscard]] inline bool containsSerial(const std::vector<YubiKey>& keys, std::uint64_t serial)
{
    return std::any_of(keys.begin(), keys.end(), [serial](const YubiKey& key) { return key.serial == serial; });
}

/// The first entry of the account, compared under canonical equivalence; null when there is none.
template <class Users>
[[nodiscard]] auto* firstUser(Users& users, const std::string& account)
{
    const auto found = std::find_if(users.begin(), users.end(), [&account](const UserSetting& user) {
        return isCanonicallyEqual(user.account, account);
    });
    return found == users.end() ? nullptr : &*found;
}

} // namespace vantro
