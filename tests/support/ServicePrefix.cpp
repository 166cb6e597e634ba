#include "support/ServicePrefix.h"

#include <string>
#include <system_error>

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
                                            entry("VantroPAMServicesFolder", pamServices().string()) +
                                            entry("VantroPAMModulesFolder", pamModules().string()) + "</dict></plist>");
}

} // namespace vantro::tests
