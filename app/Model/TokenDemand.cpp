#include "Model/TokenDemand.h"

#include <algorithm>
#include <string>
#include <system_error>

#include <QStringList>

#include "VantroStandaloneNames.h"
#include "VantroStandalonePam/PamServices.h"
#include "VantroStandalonePam/PamStack.h"
#include "appkit/StringTable.h"
#include "foundation/Bundle.h"

namespace vantro {
namespace {

namespace fs = std::filesystem;

/// The one of the add-on's PAM services that signing in includes; the others are for screen lockers.
constexpr auto signingIn = names::pamServices.front();

const PamSetting& demandingEntry()
{
    static const PamSetting entry{std::string(signingIn), ModuleInterface::Auth, ControlFlag::Required,
                                  std::string(names::pamModule)};
    return entry;
}

QString demandText(const char* key)
{
    return localizedString("SettingView", key);
}

} // namespace

TokenDemand::Folders TokenDemand::installedFolders()
{
    const Bundle& bundle = Bundle::main();
    return {bundle.string(bundle_key::pamServicesFolder), bundle.string(bundle_key::pamModulesFolder)};
}

QString TokenDemand::missingPart() const
{
    std::error_code error;
    const auto module = folders_.modules / names::pamModule;
    if (!fs::is_regular_file(module, error))
        return demandText("module_missing").arg(QString::fromStdString(module.string()));
    for (const auto service : names::pamServices)
        if (const auto path = folders_.services / service; !fs::is_regular_file(path, error))
            return demandText("service_missing").arg(QString::fromStdString(path.string()));
    return {};
}

bool TokenDemand::isAskedFor() const
{
    PamServices services(folders_.services, pamVendorServicesFolder);
    const auto path = folders_.services / signingIn;
    // Of a file without entries nothing would be found in those that include it.
    if (const auto marked = PamFile(std::string()).withEntry(demandingEntry()))
        services.assume(path, *marked);
    const auto* const own = services.at(path);
    const auto known = services.all();
    return std::any_of(known.begin(), known.end(), [&](const auto& named) {
        const auto& [name, service] = named;
        if (std::find(names::pamServices.begin(), names::pamServices.end(), name) != names::pamServices.end())
            return false;
        return PamStack(*service.file, folders_.services, [&services](const fs::path& at) { return services.at(at); })
            .holds([own](const PamStack::Step& step) { return step.file == own; });
    });
}

bool TokenDemand::isDemanded() const
{
    PamServices services(folders_.services, pamVendorServicesFolder);
    const auto* const own = services.at(folders_.services / signingIn);
    return own != nullptr && own->isDemandedBy(demandingEntry());
}

QString TokenDemand::text(bool isSwitchedOn) const
{
    if (const QString missing = missingPart(); !missing.isEmpty()) {
        QStringList lines{missing, demandText("reinstall")};
        if (isSwitchedOn)
            lines += demandText("switch_off_until_then");
        return lines.join(QLatin1Char('\n'));
    }
    if (!isAskedFor())
        return demandText("nobody_asks");
    if (!isSwitchedOn)
        return {};
    return demandText(isDemanded() ? "demanded" : "entry_not_demanding");
}

} // namespace vantro
