#include "LabAccounts.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <memory>
#include <set>
#include <stdexcept>

#include <grp.h>
#include <pwd.h>

#include "foundation/Identity.h"

namespace vantro::lab {

const std::vector<LabAccount>& labAccounts()
{
    static const std::vector<LabAccount> accounts{{"alice", "Alice Example"}, {"bob", "Bob Example"}};
    return accounts;
}

void writeAccountList(const std::filesystem::path& folder)
{
    std::ofstream users(folder / "passwd", std::ios::trunc);
    std::ofstream groups(folder / "group", std::ios::trunc);
    std::set<std::uint32_t> taken;
    std::set<std::string> names;

    ::setpwent();
    while (const passwd* const entry = ::getpwent()) {
        taken.insert(entry->pw_uid);
        names.insert(entry->pw_name);
        users << entry->pw_name << ":x:" << entry->pw_uid << ':' << entry->pw_gid << ':' << entry->pw_gecos << ':'
              << entry->pw_dir << ':' << entry->pw_shell << '\n';
    }
    ::endpwent();
    ::setgrent();
    while (const group* const entry = ::getgrent()) {
        taken.insert(entry->gr_gid);
        groups << entry->gr_name << ":x:" << entry->gr_gid << ':';
        for (char** member = entry->gr_mem; *member != nullptr; ++member) {
            groups << (member == entry->gr_mem ? "" : ",") << *member;
        }
        groups << '\n';
    }
    ::endgrent();

    const UserIdRange range = localUserIdRange();
    std::uint32_t id = range.first;
    for (const LabAccount& account : labAccounts()) {
        if (names.contains(account.name)) {
            continue;
        }
        while (taken.contains(id)) {
            ++id;
        }
        if (id > range.last) {
            throw std::runtime_error("there is no user id left for the lab's accounts");
        }
        taken.insert(id);
        const std::filesystem::path home = folder / "home" / account.name;
        std::filesystem::create_directories(home);
        users << account.name << ":x:" << id << ':' << id << ':' << account.fullName << ",,,:" << home.string()
              << ":/bin/sh\n";
        groups << account.name << ":x:" << id << ":\n";
    }
    if (!users.flush() || !groups.flush()) {
        throw std::runtime_error("the account list in " + folder.string() + " can't be written");
    }
}

std::optional<uid_t> userIdIn(const std::filesystem::path& folder, const std::string& account)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> users(std::fopen((folder / "passwd").c_str(), "re"), &std::fclose);
    while (users) {
        const passwd* const entry = ::fgetpwent(users.get());
        if (entry == nullptr) {
            break;
        }
        if (account == entry->pw_name) {
            return entry->pw_uid;
        }
    }
    return std::nullopt;
}

} // namespace vantro::lab
