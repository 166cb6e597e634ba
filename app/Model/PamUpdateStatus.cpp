#include "Model/PamUpdateStatus.h"

#include <algorithm>

#include "AppDataSet.h"
#include "appkit/StringTable.h"

namespace vantro {
namespace {

QString localized(const char* key)
{
    return localizedString("SettingView", key);
}

bool isSecureMode()
{
    return AppDataSet::shared().vantroStandaloneSetting.switchSetting.secureMode;
}

} // namespace

PamUpdateStatus& PamUpdateStatus::shared()
{
    static PamUpdateStatus status;
    return status;
}

void PamUpdateStatus::record(Change change, ControlFlag asked, const PamUpdateResults& results)
{
    if (results.isSuccess()) {
        failed_.reset();
        return;
    }
    std::array<bool, names::pamServices.size()> isDemanding{};
    if (failed_)
        isDemanding = failed_->isDemanding;
    else
        isDemanding.fill(isSecureMode());
    const std::array isChanged = {results.authorization, results.screensaver, results.screensaverNew};
    for (std::size_t entry = 0; entry < isChanged.size(); ++entry)
        if (isChanged[entry])
            isDemanding[entry] = asked == ControlFlag::Required;
    failed_ = Failed{change, results.failure, isDemanding};
}

bool PamUpdateStatus::isAsInDocument() const
{
    const auto& isDemanding = failed_->isDemanding;
    return std::all_of(isDemanding.begin(), isDemanding.end(),
                       [isOn = isSecureMode()](bool one) { return one == isOn; });
}

QString PamUpdateStatus::demandingEntries() const
{
    QStringList names;
    for (std::size_t entry = 0; entry < names::pamServices.size(); ++entry)
        if (failed_->isDemanding[entry])
            names += QLatin1String(names::pamServices[entry]);
    return names.isEmpty() ? localized("entries_demand_none")
                           : localized("entries_demand").arg(names.join(QStringLiteral(", ")));
}

QStringList PamUpdateStatus::whatIsLeft() const
{
    const bool isOn = isSecureMode();
    const char* const mend = isOn ? "mend_switched_on" : "mend_switched_off";
    if (failed_->change == Change::Switch && isAsInDocument())
        return {localized("update_failed")};
    if (failed_->change == Change::Switch || AppDataSet::shared().vantroStandaloneSetting.isAllocatedKey())
        return isAsInDocument() ? QStringList()
                                : QStringList{localized("written_in_part"), demandingEntries(), localized(mend)};
    if (isOn)
        return {localized("reset_failed"), demandingEntries(), localized("mend_without_token")};
    const QString failed = localized("reset_failed_switched_off");
    return isAsInDocument() ? QStringList{failed} : QStringList{failed, demandingEntries(), localized(mend)};
}

QString PamUpdateStatus::text() const
{
    QStringList lines = failed_ ? whatIsLeft() : QStringList();
    if (lines.isEmpty())
        return {};
    const QString reason = failed_->failure.sentence();
    lines += reason.isEmpty() ? localized("check_service") : reason;
    return lines.join(QLatin1Char('\n'));
}

} // namespace vantro
