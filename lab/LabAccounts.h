#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace vantro::lab {

/// A person whom only the lab knows.
struct LabAccount
{
    std::string name;
    std::string fullName;
};

[[nodiscard]] const std::vector<LabAccount>& labAccounts();

/// Writes the lab's account list into `folder`, as files "passwd" and "group": everybody whom the machine knows, and
/// the lab's own people with user ids of the range for people and home folders below `folder`. The machine's own
/// accounts are never touched. Throws std::runtime_error when there is no place for them.
void writeAccountList(const std::filesystem::path& folder);

/// The user id that the list in `folder` has for the account; nothing for one that it does not have.
[[nodiscard]] std::optional<uid_t> userIdIn(const std::filesystem::path& folder, const std::string& account);

} // namespace vantro::lab
