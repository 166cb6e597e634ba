#include "ViewController/Main/RegistrationKeyViewController.h"

#include <string>
#include <utility>

#include "Alerts.h"
#include "AppDataSet.h"
#include "CommonMessage.h"
#include "ServiceRequests.h"
#include "foundation/Text.h"
#include "ui_RegistrationKeyView.h"

namespace vantro {

RegistrationKeyViewController::RegistrationKeyViewController(const LogSource& source, Texts texts,
                                                             AfterRefusal afterRefusal)
    : ListDialogViewController(source), texts_(std::move(texts)), afterRefusal_(afterRefusal)
{
}

std::unique_ptr<QWidget> RegistrationKeyViewController::loadView()
{
    Ui::RegistrationKeyView outlets;
    auto view = loadForm(outlets);
    localizeForm(*view, texts_.table);
    return view;
}

void RegistrationKeyViewController::viewDidLoad()
{
    constexpr auto function = "viewDidLoad()";
    baseLogger.info("Start viewDidLoad.", function);
    prepareDisplay();
    const auto displayed = AppDataSet::shared().connectedYubiKeySerial();
    updateDisplay();
    observeTokens();
    // A token that was plugged in meanwhile was announced to nobody.
    if (AppDataSet::shared().connectedYubiKeySerial() != displayed)
        updateDisplay();
    baseLogger.info("Finished viewDidLoad.", function);
}

void RegistrationKeyViewController::viewWillAppear()
{
    baseLogger.info("viewWillAppear", "viewWillAppear()");
}

void RegistrationKeyViewController::observeTokens()
{
    // Both handlers run on the monitor's thread and own what they use.
    observe(ConnectedYubiKey,
            [log = baseLogger, update = onMainQueue([this] { updateDisplay(); })](const Notification&) {
                log.info("YubiKey connected.", "onDeviceConnected()");
                DispatchQueue::main().sync(update);
            });
    observe(DisconnectedYubiKey,
            [log = baseLogger, update = onMainQueue([this] { showNotConnected(); })](const Notification&) {
                log.info("YubiKey disconnected.", "onDeviceDisconnected()");
                DispatchQueue::main().async(update);
            });
    observe(TokenObstacleChanged, [this](const Notification&) { showObstacle(); });
}

void RegistrationKeyViewController::showNotConnected()
{
    serialLabelModel.setText(texts_.isNotConnected());
    setOKEnabled(false);
    showObstacle();
}

void RegistrationKeyViewController::showObstacle()
{
    obstacleLabelModel.setTextOrHide(AppDataSet::shared().tokenObstacleText());
}

void RegistrationKeyViewController::updateDisplay()
{
    constexpr auto function = "updateDisplay()";
    const auto serial = AppDataSet::shared().connectedYubiKeySerial();
    if (!serial) {
        baseLogger.info("YubiKey is not connected.", function);
        showNotConnected();
        return;
    }
    baseLogger.info("YubiKey connected. [Serial: " + std::to_string(*serial) + "]", function);
    const bool isAlreadyAllocated = isAllocated(*serial);
    QString text = QString::number(*serial);
    if (isAlreadyAllocated) {
        baseLogger.info("The settings are already assigned.", function);
        text += QLatin1Char('\n') + texts_.isAlreadyAllocated();
    }
    serialLabelModel.setText(text);
    setOKEnabled(!isAlreadyAllocated);
    showObstacle();
}

void RegistrationKeyViewController::onClickOK(QObject* /*sender*/)
{
    baseLogger.info("Called onClickOK.", "onClickOK(_:)");
    if (registerToken() || afterRefusal_ == AfterRefusal::Close)
        dismissController();
}

bool RegistrationKeyViewController::registerToken()
{
    constexpr auto function = "onClickOK(_:)";
    const auto serial = parseUInt64(serialLabelModel.text().toStdString());
    if (!isPresentedByList() || !serial) {
        baseLogger.info("Return onClickOK.", function);
        return false;
    }
    logRequest(*serial);
    ServiceFailure failure;
    if (!createCRSettingFile(*serial, &failure)) {
        baseLogger.info("Failed to update the CR setting file.", function);
        createOKButtonOnlyAlert(NSAlert::Style::Warning, CommonMessage::warning(),
                                failure.below(CommonMessage::CRFailureAlert()))
            .runModal();
        return false;
    }
    if (isAllocatedMeanwhile(*serial)) {
        baseLogger.info("This YubiKey is already assigned. [Serial: " + std::to_string(*serial) + "]", function);
        return false;
    }
    addToSetting(*serial);
    addToList(*serial);
    return true;
}

} // namespace vantro
