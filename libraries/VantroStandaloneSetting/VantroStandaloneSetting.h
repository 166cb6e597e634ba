#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantro {

/// One token.
struct YubiKey
{
    /// Implicit, so that a list of tokens can be written as the list of their serials.
    YubiKey(std::uint64_t number) : serial(number) {}

    bool operator==(const YubiKey&) const = default;

    /// Never 0 in a valid document.
    std::uint64_t serial;
};

/// Whether any of the keys has the serial.
[[nodiscard]] bool containsSerial(const std::vector<YubiKey>& keys, std::uint64_t serial);

/// Adds a key and sorts all by their serials, stably.
void addSorted(std::vector<YubiKey>& keys, std::uint64_t serial);

/// Removes every key with the serial; the others keep their order.
void removeSerial(std::vector<YubiKey>& keys, std::uint64_t serial);

/// A local account and its tokens.
struct UserSetting
{
    UserSetting(std::string name, std::vector<YubiKey> tokens = {}) : account(std::move(name)), keys(std::move(tokens))
    {
    }

    bool operator==(const UserSetting&) const = default;

    /// The login name.
    std::string account;
    std::vector<YubiKey> keys;
};

/// The two switches of the sign-in.
struct SwitchSetting
{
    bool operator==(const SwitchSetting&) const = default;

    /// Forced token logon: a token is mandatory at sign-in and unlock.
    bool secureMode = false;
    bool screenLock = false;
};

struct MasterKeySetting
{
    bool operator==(const MasterKeySetting&) const = default;

    /// The tokens that open any account.
    std::vector<YubiKey> masterKeys = {};
};

struct AdminSetting
{
    bool operator==(const AdminSetting&) const = default;

    /// The tool asks for an administrator token at its start.
    bool toolLoginAuth = false;
    std::vector<YubiKey> adminKeys = {};
};

/// The settings document: the whole configuration of the add-on, as a value. A new one has no keys and every switch
/// off. Accounts are compared under canonical equivalence; where several entries have the same account, the first one
/// counts.
struct VantroStandaloneSetting
{
    bool operator==(const VantroStandaloneSetting&) const = default;

    /// Whether some token opens an account: a key of any user, or a master key.
    [[nodiscard]] bool isAllocatedKey() const;

    /// Whether any list names the token.
    [[nodiscard]] bool isNamed(std::uint64_t serial) const;

    /// The entry of the account; null when there is none.
    [[nodiscard]] const UserSetting* user(std::string_view account) const;

    /// Whether the account's entry has the token; entries of other accounts are not looked at.
    [[nodiscard]] bool isAllcatedUserKey(std::string_view account, std::uint64_t serial) const;

    /// Adds a token to the account's entry, which is made where there is none, and sorts: the users by the code points
    /// of their account's NFC form (no locale, no case folding), each one's keys by serial, all stably.
    void addUserKey(std::string_view account, std::uint64_t serial);

    /// Removes a token from the account's entry, which stays even without keys; nothing where there is no entry.
    void removeUserKey(std::string_view account, std::uint64_t serial);

    void removeUsersWithoutKeys();

    /// Whether forced token logon is on and nobody's token would open an account any more, with so many of the users'
    /// keys less.
    [[nodiscard]] bool areLastUserKeys(std::size_t count) const;

    /// The same with so many master keys less; any user's entry counts as somebody's token.
    [[nodiscard]] bool areLastMasterKeys(std::size_t count) const;

    /// Whether the tool asks for an administrator token and none would be left, with so many less.
    [[nodiscard]] bool areLastAdminKeys(std::size_t count) const;

    SwitchSetting switchSetting = {};
    std::vector<UserSetting> users = {};
    MasterKeySetting masterKeySetting = {};
    AdminSetting adminSetting = {};

    /// False only where the document as read would misrepresent its file: not well-formed, another root element or a
    /// newer format version, a section missing or twice, a switch that is neither true nor false, a serial that is no
    /// unsigned 64-bit number or 0, an account name that is empty or holds control characters.
    bool isValid = true;
};

} // namespace vantro
