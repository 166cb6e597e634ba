#include "ViewController/Main/TabViewController.h"

#include <algorithm>
#include <array>
#include <utility>

#include <QUrl>

#include "Alerts.h"
#include "AppDataSet.h"
#include "ApplicationVersion.h"
#include "CommonMessage.h"
#include "DefaultsKeys.h"
#include "ServiceRequests.h"
#include "StartChecks.h"
#include "StartMessage.h"
#include "appkit/NSApplication.h"
#include "appkit/NSStoryboard.h"
#include "appkit/NSWorkspace.h"
#include "appkit/UserDefaults.h"

namespace vantro {
namespace {

constexpr QSize pageSize{420, 340};
constexpr std::array tabViewItemTypes = {"Setting", "UserKey", "MasterKey", "Admin"};

bool isKnownTabViewItemType(const QString& identifier)
{
    return std::find(tabViewItemTypes.begin(), tabViewItemTypes.end(), identifier) != tabViewItemTypes.end();
}

} // namespace

TabViewController::TabViewController()
    : logger(AppDataSet::shared().logger.inFile("ViewController/Main/TabViewController"))
{
    setTitle(windowTitleWithVersion());
}

void TabViewController::viewDidLoad()
{
    constexpr auto function = "viewDidLoad()";
    NSTabViewController::viewDidLoad();
    logger.info("Start viewDidLoad.", function);
    observe(MultipleConnectedYubiKey, [this](const Notification&) { onMultipleConnectedYubiKey(); });
    // Told when the operation that wrote has ended, with its dialog.
    observe(DocumentNotWritten, [tell = onMainQueue([this] { tellDocumentNotWritten(); })](const Notification&) {
        DispatchQueue::main().async(tell);
    });
    // Tokens that were counted before anybody observed count as well.
    if (AppDataSet::shared().connectedYubiKeyCount() >= 2)
        onMultipleConnectedYubiKey();
    if (AppDataSet::shared().vantroStandaloneSetting.adminSetting.toolLoginAuth)
        presentAsModalWindowAndWait(NSStoryboard::named("Alert").instantiateController("LoginAuthAlertViewController"));
    logger.info("Finished viewDidLoad.", function);
}

void TabViewController::onMultipleConnectedYubiKey()
{
    // On the monitor's thread, as a rule. This controller is the main window's and lives as long as the process does.
    constexpr auto function = "onMultipleConnectedYubiKey()";
    if (isDisplayingMultipleConnectionsAlert.exchange(true)) {
        logger.info("An alert has already been displayed.", function);
        return;
    }
    DispatchQueue::main().async([this] {
        logger.info("Displays alerts.", function);
        presentAsModalWindow(
            NSStoryboard::named("Alert").instantiateController("MultipleConnectionsAlertViewController"));
    });
}

void TabViewController::viewWillAppear()
{
    constexpr auto function = "viewWillAppear()";
    NSTabViewController::viewWillAppear();
    logger.info("Start viewWillAppear.", function);
    if (didAppear)
        return;
    systemSettingAlert();
    if (isFirstStart()) {
        logger.info("Close the application for the first time.", function);
        NSApplication::terminate();
    }
    if (!AppDataSet::shared().vantroStandaloneSetting.isValid) {
        logger.info("Setting file is invalid.", function);
        recoverSetting();
    }
    logger.info("Finished viewWillAppear.", function);
}

void TabViewController::recoverSetting()
{
    quitUnlessInvalidDocumentIsKept();
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    setting = VantroStandaloneSetting();
    setting.write();
    static_cast<void>(updateAllPamSettings(ControlFlag::Optional));
    createOKButtonOnlyAlert(NSAlert::Style::Warning, CommonMessage::warning(), CommonMessage::unexpectedChangeSetting())
        .runModal();
}

void TabViewController::viewDidAppear()
{
    constexpr auto function = "viewDidAppear()";
    NSTabViewController::viewDidAppear();
    logger.info("Start viewDidAppear.", function);
    didAppear = true;
    if (window() != nullptr)
        window()->setWindowTitle(windowTitleWithVersion());
    resizeWindowToFit(selectedTabViewItem());
    if (AppDataSet::shared().vantroStandaloneSetting.file().writability())
        DispatchQueue::main().async(onMainQueue([this] { tellDocumentNotWritten(); }));
    logger.info("Finished viewDidAppear.", function);
}

void TabViewController::tellDocumentNotWritten()
{
    if (std::exchange(hasToldDocumentNotWritten, true))
        return;
    createOKButtonOnlyAlert(NSAlert::Style::Warning, StartMessage::documentNotWrittenHeading(),
                            StartMessage::documentNotWritten().arg(QString::fromStdString(
                                AppDataSet::shared().vantroStandaloneSetting.file().url().string())))
        .runModal();
}

void TabViewController::tabViewWillSelect(const NSTabViewItem* item)
{
    NSTabViewController::tabViewWillSelect(item);
    if (item == nullptr)
        return;
    logger.info("tabView willSelect", "tabView(_:willSelect:)");
    if (isKnownTabViewItemType(item->identifier()))
        tabViewSizes[item] = pageSize;
    else
        tabViewSizes.erase(item);
}

void TabViewController::tabViewDidSelect(const NSTabViewItem* item)
{
    NSTabViewController::tabViewDidSelect(item);
    if (item == nullptr)
        return;
    logger.info("tabView didSelect.", "tabView(_:didSelect:)");
    if (window() != nullptr)
        window()->setWindowTitle(item->label());
    resizeWindowToFit(item);
}

void TabViewController::resizeWindowToFit(const NSTabViewItem* tabViewItem)
{
    const auto size = tabViewSizes.find(tabViewItem);
    auto* const shownWindow = qobject_cast<NSWindow*>(window());
    if (size != tabViewSizes.end() && shownWindow != nullptr)
        shownWindow->setContentSize(size->second);
}

void TabViewController::systemSettingAlert()
{
    constexpr auto function = "systemSettingAlert()";
    auto& defaults = UserDefaults::standard();
    if (defaults.boolean(defaults_key::suppression)) {
        logger.info("Do not display alerts.", function);
        return;
    }
    const QUrl privacySettings(
        QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles"));
    if (privacySettings.isValid()) {
        logger.info("Open setting panel.", function);
        NSWorkspace::shared().open(privacySettings);
    }
    logger.info("Display Alert.", function);
    NSAlert alert;
    alert.windowTitle = windowTitleWithVersion();
    alert.messageText = CommonMessage::installAfterAlertMessage();
    alert.addButton(CommonMessage::close());
    alert.suppressionTitle = CommonMessage::doNotDisplay();
    alert.accessoryText = CommonMessage::installAfterAlertInfo();
    NSApplication::activateIgnoringOtherApps();
    alert.runModal();
    defaults.set(defaults_key::suppression, alert.isSuppressed);
}

bool TabViewController::isFirstStart()
{
    auto& defaults = UserDefaults::standard();
    const bool isFirst = !defaults.object(defaults_key::isFirstStart).has_value();
    if (!defaults.set(defaults_key::isFirstStart, false))
        createOKButtonOnlyAlert(NSAlert::Style::Warning, StartMessage::defaultsNotStoredHeading(),
                                StartMessage::defaultsNotStored().arg(defaults.file()))
            .runModal();
    return isFirst;
}

} // namespace vantro
