#include "support/ServicePrefix.h"

#include <string>
#include <system_error>

namespace vantro::tests {
namespace fs = std::filesystem;

ServicePrefix::ServicePrefix()
{
    fs::create_directory(program().parent_path());
    std::error_code error;
    fs::create_hard_link(VANTRO_SERVICE_PROGRAM, program(), error);
    if (error)
        fs::copy_file(VANTRO_SERVICE_PROGRAM, program());
}

void ServicePrefix::makeDemandable() const
{
    fs::copy_file(VANTRO_LIBPAM_MODULES_FOLDER "/pam_permit.so", pamModules() / "pam_vantro_standalone.so");
    store({.masterKeySetting = {.masterKeys = {7}}});
    const auto zeros = [](std::size_t bytes) { return std::string(2 * bytes, '0') + "\n"; };
    writeFile(records() / "7",
              "vantro-challenge-response 1\nserial 7\nslot 2\nchallenge " + zeros(63) + "salt " + zeros(32) + "hash " +
                  zeros(32),
              0600);
}

} // namespace vantro::tests
