#pragma once

#include <string>

namespace vantro::tests {

/// Puts accounts, the lines of a passwd file, in the place of the machine's own. They count in the programs that this
/// process becomes or starts with nss_wrapper preloaded, until removeAccounts(). NSS_WRAPPER_PASSWD names their file.
void replaceAccounts(const std::string& passwd);

/// Removes the files of the accounts that the process was started with.
void removeAccounts();

} // namespace vantro::tests
