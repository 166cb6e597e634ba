#include "support/TemporaryPrefix.h"

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

#include "foundation/Bundle.h"

namespace vantro::tests {

TemporaryPrefix::TemporaryPrefix()
{
    std::string dictionary;
    const auto add = [&](std::string_view key, const std::string& value) {
        dictionary += "<key>" + std::string(key) + "</key><string>" + value + "</string>\n";
    };
    const auto addFolder = [&](std::string_view key, const std::filesystem::path& folder, std::filesystem::perms mode) {
        std::filesystem::create_directory(folder);
        std::filesystem::permissions(folder, mode);
        add(key, folder.string());
    };
    using std::filesystem::perms;
    constexpr auto open =
        perms::owner_all | perms::group_read | perms::group_exec | perms::others_read | perms::others_exec;
    add(bundle_key::shortVersion, "1.0.0");
    addFolder(bundle_key::settingsFolder, settingsFolder(), open);
    addFolder(bundle_key::challengeResponseFolder, challengeResponseFolder(), perms::owner_all);
    addFolder(bundle_key::pamServicesFolder, pamServicesFolder(), open);
    addFolder(bundle_key::pamModulesFolder, pamModulesFolder(), open);

    const Bundle bundle(path());
    std::filesystem::create_directories(bundle.resourceFolder());
    writeFile(bundle.resourceFolder() / "Info.plist",
              "<plist version=\"1.0\"><dict>\n" + dictionary + "</dict></plist>\n");
    if (!Bundle::setMainPrefix(path()))
        throw std::logic_error("the main bundle was made before the temporary prefix");

    ::setenv("XDG_STATE_HOME", stateHome().c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", configHome().c_str(), 1);
}

} // namespace vantro::tests
