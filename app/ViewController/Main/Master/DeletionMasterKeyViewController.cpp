#include "ViewController/Main/Master/DeletionMasterKeyViewController.h"

#include "AppDataSet.h"
#include "CommonMessage.h"
#include "MasterKeyViewMessage.h"
#include "Model/KeySorting.h"
#include "ViewController/Main/Master/MasterKeyViewController.h"
#include "ui_DeletionMasterKeyView.h"

namespace vantro {

DeletionMasterKeyViewController::DeletionMasterKeyViewController()
    : DeletionKeyViewController("ViewController/Main/Master/DeletionMasterKeyViewController",
                                {MasterKeyViewMessage::notSelectedForDeletion, CommonMessage::noRegistrationYubiKey})
{
}

std::unique_ptr<QWidget> DeletionMasterKeyViewController::loadView()
{
    Ui::DeletionMasterKeyView outlets;
    return loadForm(outlets, "DeletionMasterKeyView");
}

bool DeletionMasterKeyViewController::takeController()
{
    controller = qobject_cast<MasterKeyViewController*>(presentingViewController());
    return controller != nullptr;
}

QStringList DeletionMasterKeyViewController::selectedLines()
{
    QStringList lines;
    for (const MasterKeyModel& row : controller->masterKeyArrayController->selectedObjects())
        lines += QString::fromStdString(row.serial());
    return lines;
}

bool DeletionMasterKeyViewController::hasSelectedRows()
{
    return !controller->masterKeyArrayController->selectionIndexes().empty();
}

bool DeletionMasterKeyViewController::isLastKeyDeletion()
{
    const auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    return setting.switchSetting.secureMode && setting.users.empty() &&
           controller->masterKeyArrayController->selectedObjects().size() == setting.masterKeySetting.masterKeys.size();
}

void DeletionMasterKeyViewController::removeFromSetting()
{
    constexpr auto function = "onClickOK(_:)";
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    logger.info("Update setting.", function);
    for (const MasterKeyModel& row : controller->masterKeyArrayController->selectedObjects()) {
        logger.info("Remove master key. [Serial: " + row.serial() + "]", function);
        removeSerial(setting.masterKeySetting.masterKeys, row.serialUInt());
    }
    setting.write();
}

void DeletionMasterKeyViewController::removeFromList()
{
    auto& rows = *controller->masterKeyArrayController;
    rows.removeAtArrangedObjectIndexes(rows.selectionIndexes());
    controller->clearTableSelection();
}

} // namespace vantro
