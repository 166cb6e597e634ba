#include "ViewController/Main/DeletionKeyViewController.h"

#include <utility>

#include "AppDataSet.h"
#include "ApplicationVersion.h"
#include "CommonMessage.h"
#include "Model/PamUpdateStatus.h"
#include "ServiceRequests.h"
#include "appkit/StringTable.h"
#include "ui_DeletionKeyView.h"

namespace vantro {
namespace {
constexpr auto onClickOKFunction = "onClickOK(_:)";
}

DeletionKeyViewController::DeletionKeyViewController(const LogSource& source, Texts texts)
    : ListDialogViewController(source), texts_(std::move(texts))
{
}

std::unique_ptr<QWidget> DeletionKeyViewController::loadView()
{
    auto view = std::make_unique<QWidget>();
    Ui::DeletionKeyView outlets;
    outlets.setupUi(view.get());
    localizeForm(*view, texts_.table);
    confirmationLabel = outlets.confirmationLabel;
    labelModel.bindTo(outlets.keysLabel);
    // Enter never destroys.
    addButtons(outlets.buttonBox, localizedString(texts_.table, "delete_button"),
               localizedString(texts_.table, "cancel_button"), DefaultButton::Cancel);
    return view;
}

void DeletionKeyViewController::viewDidLoad()
{
    constexpr auto function = "viewDidLoad()";
    if (logsLoading())
        baseLogger.info("Start viewDidLoad.", function);
    if (!isPresentedByList()) {
        baseLogger.info("Failed to get presenting view controller.", function);
        return;
    }
    const QStringList lines = selectedLines();
    if (lines.isEmpty()) {
        if (logsLoading())
            baseLogger.info("Not selected for deletion YubiKey.", function);
        showNothingSelected();
    } else {
        confirmationLabel->setText(localizedString(texts_.table, "confirmation", static_cast<int>(lines.size())));
        labelModel.setText(lines.join(QLatin1Char('\n')));
    }
    if (logsLoading())
        baseLogger.info("Finished viewDidLoad.", function);
}

void DeletionKeyViewController::showNothingSelected()
{
    labelModel.setText(texts_.isNothingSelected());
    OKButton->setEnabled(false);
    // A hidden label takes no room in its layout.
    confirmationLabel->hide();
}

NSAlert DeletionKeyViewController::createAlert() const
{
    NSAlert alert;
    alert.windowTitle = windowTitleWithVersion();
    alert.alertStyle = NSAlert::Style::Warning;
    alert.messageText = CommonMessage::caution();
    alert.informativeText = texts_.isLastKey();
    alert.addButton(CommonMessage::ok());
    alert.addButton(CommonMessage::cancel());
    // Enter never destroys.
    alert.defaultButton = NSAlert::secondButtonReturn;
    return alert;
}

void DeletionKeyViewController::onClickOK(QObject* /*sender*/)
{
    baseLogger.info("Called onClickOK.", onClickOKFunction);
    // A dialog without its list has nothing to delete from and only closes.
    if (isPresentedByList())
        deleteKeys();
    dismissController();
}

void DeletionKeyViewController::deleteKeys()
{
    if (!hasSelectedRows()) {
        baseLogger.info("selectedRowIndexes is empty.", onClickOKFunction);
        return;
    }
    if (isLastKeyDeletion() && createAlert().runModal() == NSAlert::secondButtonReturn) {
        baseLogger.info("Cancel alert.", onClickOKFunction);
        return;
    }
    removeFromSetting();
    removeFromList();
    finishRemoval();
}

void releaseForcedLogonWithoutKeys(const Logger& logger)
{
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    if (setting.isAllocatedKey())
        return;
    logger.info("No YubiKey is assigned.", onClickOKFunction);
    logger.info("Start update PAM setting.", onClickOKFunction);
    const PamUpdateResults results = updateAllPamSettings(ControlFlag::Optional);
    logger.info(results.logText(), onClickOKFunction);
    PamUpdateStatus::shared().record(PamUpdateStatus::Change::Reset, ControlFlag::Optional, results);
    if (!results.isSuccess()) {
        logger.warning("Failed update PAM setting.", onClickOKFunction);
        return;
    }
    setting.switchSetting.secureMode = false;
    logger.info("Update setting. [Forced YubiKey Logon: false]", onClickOKFunction);
    setting.write();
}

} // namespace vantro
