#include "Model/PamUpdateStatus.h"

#include <algorithm>

#include "AppDataSet.h"
#include "appkit/StringTable.h"

namespace vantro {
namespace {

QString updateText(const char* key)
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
    return names.isEmpty() ? updateText("entries_demand_none")
                           : updateText("entries_demand").arg(names.join(QStringLiteral(", ")));
}

QStringList PamUpdateStatus::whatIsLeft() const
{
    const bool isOn = isSecureMode();
    const char* const mend = isOn ? "mend_switched_on" : "mend_switched_off";
    if (failed_->change == Change::Switch && isAsInDocument())
        return {updateText("update_failed")};
    if (failed_->change == Change::Switch || AppDataSet::shared().vantroStandaloneSetting.isAllocatedKey())
        return isAsInDocument() ? QStringList()
                                : QStringList{updateText("written_in_part"), demandingEntries(), updateText(mend)};
    if (isOn)
        return {updateText("reset_failed"), demandingEntries(), updateText("mend_without_token")};
    const QString failed = updateText("reset_failed_switched_off");
    return isAsInDocument() ? QStringList{failed} : QStringList{failed, demandingEntries(), updateText(mend)};
}

QString PamUpdateStatus::text() const
{
    QStringList lines = failed_ ? whatIsLeft() : QStringList();
    if (lines.isEmpty())
        return {};
    const QString reason = failed_->failure.sentence();
    lines += reason.isEmpty() ? updateText("check_service") : reason;
    return lines.join(QLatin1Char('\n'));
}

} // namespace vantro
