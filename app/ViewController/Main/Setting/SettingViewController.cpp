#include "ViewController/Main/Setting/SettingViewController.h"

#include <string>

#include "AppDataSet.h"
#include "Model/PamUpdateStatus.h"
#include "ServiceRequests.h"
#include "ui_SettingView.h"

namespace vantro {
namespace {

const NotificationName screenLockStateChanged = "screenLockStateChanged";
const NotificationName forcedYubiKeyLogonChanged = "forcedYubiKeyLogonChanged";

std::string asText(bool value)
{
    return value ? "true" : "false";
}

} // namespace

SettingViewController::SettingViewController()
    : screenLockModel(screenLockStateChanged), forcedYubiKeyLogonModel(forcedYubiKeyLogonChanged),
      logger(AppDataSet::shared().logger.inFile("ViewController/Main/Setting/SettingViewController"))
{
}

std::unique_ptr<QWidget> SettingViewController::loadView()
{
    auto view = std::make_unique<QWidget>();
    Ui::SettingView outlets;
    outlets.setupUi(view.get());
    forcedYubiKeyLogonWarning = outlets.forcedYubiKeyLogonWarning;
    statusLabel_ = outlets.statusLabel;
    demandLabel_ = outlets.demandLabel;
    screenLockModel.bindTo(outlets.screenLockButton);
    forcedYubiKeyLogonModel.bindTo(outlets.forcedYubiKeyLogonButton);
    return view;
}

void SettingViewController::viewDidLoad()
{
    constexpr auto function = "viewDidLoad()";
    logger.info("Start viewDidLoad.", function);
    // The models are this page's own and change on the main thread, where the handlers then run.
    observe(screenLockStateChanged, [this](const Notification&) { updateScreenLockModel(); });
    observe(forcedYubiKeyLogonChanged, [this](const Notification&) { updateForcedYubiKeyModel(); });
    const auto& [services, modules] = TokenDemand::installedFolders();
    pamFolders_.addPaths({QString::fromStdString(services.string()), QString::fromStdString(modules.string())});
    connect(&pamFolders_, &QFileSystemWatcher::directoryChanged, this, &SettingViewController::showDemand);
    logger.info("Finished viewDidLoad.", function);
}

void SettingViewController::viewWillAppear()
{
    constexpr auto function = "viewWillAppear()";
    const auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    const bool isAllocatedKey = setting.isAllocatedKey();
    logger.info("Start viewWillAppear. [Allocated: " + asText(isAllocatedKey) + "]", function);
    forcedYubiKeyLogonModel.setState(setting.switchSetting.secureMode);
    forcedYubiKeyLogonModel.setIsEnabled(isAllocatedKey);
    screenLockModel.setState(setting.switchSetting.screenLock);
    screenLockModel.setIsEnabled(true);
    forcedYubiKeyLogonWarning->setHidden(isAllocatedKey);
    showStatus();
    logger.info("Finished viewWillAppear.", function);
}

void SettingViewController::updateScreenLockModel()
{
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    logger.info("Update ScreenLockModel: " + asText(screenLockModel.state()) + ".", "updateScreenLockModel()");
    setting.switchSetting.screenLock = screenLockModel.state();
    setting.write();
}

void SettingViewController::updateForcedYubiKeyModel()
{
    constexpr auto function = "updateForcedYubiKeyModel()";
    const bool isOn = forcedYubiKeyLogonModel.state();
    logger.info("Update ForcedYubiKeyModel: " + asText(isOn), function);
    const ControlFlag asked = isOn ? ControlFlag::Required : ControlFlag::Optional;
    const PamUpdateResults results = updateAllPamSettings(asked);
    logger.info(results.logText(), function);
    PamUpdateStatus::shared().record(PamUpdateStatus::Change::Switch, asked, results);
    if (results.isSuccess()) {
        auto& setting = AppDataSet::shared().vantroStandaloneSetting;
        setting.switchSetting.secureMode = isOn;
        setting.write();
    } else {
        logger.warning("Failed update PAM setting.", function);
        restoreForcedYubiKeyModel();
    }
    showStatus();
}

void SettingViewController::restoreForcedYubiKeyModel()
{
    forcedYubiKeyLogonModel.needNotification = false;
    forcedYubiKeyLogonModel.setState(AppDataSet::shared().vantroStandaloneSetting.switchSetting.secureMode);
    forcedYubiKeyLogonModel.needNotification = true;
}

void SettingViewController::showStatus()
{
    statusLabel_->setText(PamUpdateStatus::shared().text());
    statusLabel_->setHidden(statusLabel_->text().isEmpty());
    showDemand();
}

void SettingViewController::showDemand()
{
    demandLabel_->setText(demand_.text(forcedYubiKeyLogonModel.state()));
    demandLabel_->setHidden(demandLabel_->text().isEmpty());
}

} // namespace vantro
