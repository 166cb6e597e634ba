#include "foundation/Identity.h"

#include <cctype>
#include <cerrno>
#include <grp.h>
#include <limits>
#include <pwd.h>
#include <sstream>
#include <unistd.h>
#include <unordered_set>

#include "foundation/DurableFile.h"
#include "foundation/Text.h"

namespace vantro {
namespace {

std::string fullNameOf(const passwd& record)
{
    const std::string_view gecos = record.pw_gecos != nullptr ? record.pw_gecos : "";
    std::string fullName;
    for (const char character : gecos.substr(0, gecos.find(','))) {
        if (character != '&') {
            fullName += character;
            continue;
        }
        std::string login = record.pw_name;
        if (!login.empty())
            login.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(login.front())));
        fullName += login;
    }
    return fullName;
}

/// A record of the directory with the texts that it points to.
template <class Record>
class DirectoryRecord
{
  public:
    /// `lookUp` is the reentrant function of the record's kind, which wants a larger buffer where this one is too
    /// small.
    template <class LookUp, class Key>
    DirectoryRecord(LookUp lookUp, Key key)
    {
        while (lookUp(key, &record_, buffer_.data(), buffer_.size(), &found_) == ERANGE)
            buffer_.resize(buffer_.size() * 2);
    }
    DirectoryRecord(const DirectoryRecord&) = delete;
    DirectoryRecord& operator=(const DirectoryRecord&) = delete;

    explicit operator bool() const { return found_ != nullptr; }
    const Record& operator*() const { return *found_; }
    const Record* operator->() const { return found_; }

  private:
    std::vector<char> buffer_ = std::vector<char>(1024);
    Record record_ = {};
    Record* found_ = nullptr;
};

struct PersonNames
{
    std::string loginName;
    std::string fullName;
};

std::optional<PersonNames> lookUp(uid_t user)
{
    const DirectoryRecord<passwd> record(::getpwuid_r, user);
    return record ? std::optional(PersonNames{record->pw_name, fullNameOf(*record)}) : std::nullopt;
}

} // namespace

UserIdRange userIdRange(std::string_view loginDefs)
{
    UserIdRange range;
    std::istringstream lines{std::string(loginDefs)};
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name;
        std::string number;
        words >> name >> number;
        const auto value = parseUInt64(number);
        if (!value || *value > std::numeric_limits<std::uint32_t>::max())
            continue;
        if (name == "UID_MIN")
            range.first = static_cast<std::uint32_t>(*value);
        else if (name == "UID_MAX")
            range.last = static_cast<std::uint32_t>(*value);
    }
    return range;
}

UserIdRange localUserIdRange()
{
    constexpr std::size_t loginDefsLimit = 1 << 20;
    std::error_code error;
    return userIdRange(readFile("/etc/login.defs", loginDefsLimit, error).value_or(""));
}

std::vector<Identity> queryUserIdentities()
{
    const UserIdRange range = localUserIdRange();
    std::vector<Identity> identities;
    std::unordered_set<std::string> names;
    ::setpwent();
    while (const passwd* const record = ::getpwent()) {
        // Any record takes its name, whoever it belongs to: looking the name up finds that one.
        const bool isFirstOfItsName = names.insert(record->pw_name).second;
        if (!isFirstOfItsName || record->pw_uid < range.first || record->pw_uid > range.last)
            continue;
        identities.push_back({fullNameOf(*record), record->pw_name, record->pw_dir != nullptr ? record->pw_dir : ""});
    }
    ::endpwent();
    return identities;
}

std::optional<std::string> loginName(uid_t user)
{
    const auto names = lookUp(user);
    return names ? std::optional(names->loginName) : std::nullopt;
}

std::optional<gid_t> groupId(const std::string& name)
{
    const DirectoryRecord<group> record(::getgrnam_r, name.c_str());
    return record ? std::optional(record->gr_gid) : std::nullopt;
}

std::optional<uid_t> userId(const std::string& loginName)
{
    const DirectoryRecord<passwd> record(::getpwnam_r, loginName.c_str());
    return record ? std::optional(record->pw_uid) : std::nullopt;
}

std::string NSUserName()
{
    return loginName(::geteuid()).value_or(std::to_string(::geteuid()));
}

std::string NSFullUserName()
{
    return lookUp(::geteuid()).value_or(PersonNames{}).fullName;
}

} // namespace vantro
