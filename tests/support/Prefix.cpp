#include "support/Prefix.h"

#include <string>
#include <string_view>

#include "VantroStandaloneSetting/SettingFile.h"
#include "VantroStandaloneSetting/SettingText.h"
#include "foundation/Bundle.h"

namespace vantro::tests {
namespace fs = std::filesystem;

Prefix::Prefix()
{
    const auto entry = [](std::string_view key, const std::string& value) {
        return "<key>" + std::string(key) + "</key><string>" + value + "</string>\n";
    };
    for (const auto& folder : {settings(), records(), pamServices(), pamModules()}) {
        fs::create_directory(folder);
        fs::permissions(folder, static_cast<fs::perms>(folder == records() ? 0700 : 0755));
    }
    const fs::path resources = Bundle(path()).resourceFolder();
    fs::create_directories(resources);
    writeFile(resources / "Info.plist", "<plist version=\"1.0\"><dict>\n" + entry(bundle_key::shortVersion, "1.0.0") +
                                            entry(bundle_key::settingsFolder, settings()) +
                                            entry(bundle_key::challengeResponseFolder, records()) +
                                            entry(bundle_key::signedInFolder, signedIn()) +
                                            entry(bundle_key::pamServicesFolder, pamServices()) +
                                            entry(bundle_key::pamModulesFolder, pamModules()) + "</dict></plist>\n");
}

fs::path Prefix::settingsDocument() const
{
    return settings() / SettingFile::fileName;
}

void Prefix::store(const VantroStandaloneSetting& setting) const
{
    writeFile(settingsDocument(), serialised(setting));
}

} // namespace vantro::tests
