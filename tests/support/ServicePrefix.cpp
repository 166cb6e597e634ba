#include "support/ServicePrefix.h"

#include <string>
#include <system_error>

#include "VantroStandaloneSetting/SettingFile.h"
#include "VantroStandaloneSetting/SettingText.h"

namespace vantro::tests {
namespace fs = std::filesystem;

ServicePrefix::ServicePrefix()
{
    fs::create_directories(program().parent_path());
    std::error_code error;
    fs::create_hard_link(VANTRO_SERVICE_PROGRAM, program(), error);
    if (error)
        fs::copy_file(VANTRO_SERVICE_PROGRAM, program());

    for (const auto& folder : {settings(), records(), pamServices(), pamModules()}) {
        fs::create_directories(folder);
        fs::permissions(folder, fs::perms::owner_all);
    }
    const auto entry = [](const std::string& key, const std::string& value) {
        return "<key>" + key + "</key><string>" + value + "</string>";
    };
    const fs::path resources = path() / "share" / "vantro-standalone";
    fs::create_directories(resources);
    writeFile(resources / "Info.plist", "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>" +
                                            entry("CFBundleShortVersionString", "1.2.3") +
                                            entry("VantroSettingsFolder", settings().string()) +
                                            entry("VantroChallengeResponseFolder", records().string()) +
                                            entry("VantroSignedInFolder", signedIn().string()) +
                                            entry("VantroPAMServicesFolder", pamServices().string()) +
                                            entry("VantroPAMModulesFolder", pamModules().string()) + "</dict></plist>");
}

void ServicePrefix::store(const VantroStandaloneSetting& setting) const
{
    writeFile(settings() / SettingFile::fileName, serialised(setting));
}

void ServicePrefix::installModule() const
{
    fs::copy_file(VANTRO_LIBPAM_MODULES_FOLDER "/pam_permit.so", pamModules() / "pam_vantro_standalone.so",
                  fs::copy_options::overwrite_existing);
}

void ServicePrefix::makeDemandable() const
{
    installModule();
    VantroStandaloneSetting setting;
    setting.masterKeySetting.masterKeys.emplace_back(7);
    store(setting);
    const auto zeros = [](std::size_t bytes) { return std::string(2 * bytes, '0') + "\n"; };
    writeFile(records() / "7",
              "vantro-challenge-response 1\nserial 7\nslot 2\nchallenge " + zeros(63) + "salt " + zeros(32) + "hash " +
                  zeros(32),
              0600);
}

} // namespace vantro::tests
