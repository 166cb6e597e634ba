#include "ViewController/Main/Admin/DeletionAdminKeyViewController.h"

#include "AdminViewMessage.h"
#include "AppDataSet.h"
#include "CommonMessage.h"
#include "Model/KeySorting.h"
#include "ViewController/Main/Admin/AdminViewContorller.h"
#include "ui_DeletionAdminKeyView.h"

namespace vantro {

DeletionAdminKeyViewController::DeletionAdminKeyViewController()
    : DeletionKeyViewController(
          "ViewController/Main/Admin/DeletionAdminKeyViewController",
          {AdminViewMessage::notSelectedForDeletion, AdminViewMessage::noRegistrationAdminYubiKey})
{
}

std::unique_ptr<QWidget> DeletionAdminKeyViewController::loadView()
{
    Ui::DeletionAdminKeyView outlets;
    return loadForm(outlets, "DeletionAdminKeyView");
}

bool DeletionAdminKeyViewController::takeController()
{
    controller = qobject_cast<AdminViewContorller*>(presentingViewController());
    return controller != nullptr;
}

QStringList DeletionAdminKeyViewController::selectedLines()
{
    QStringList lines;
    for (const AdminKeyModel& row : controller->adminKeyArrayController->selectedObjects())
        lines += QString::fromStdString(row.serial());
    return lines;
}

bool DeletionAdminKeyViewController::hasSelectedRows()
{
    return !controller->adminKeyArrayController->selectionIndexes().empty();
}

bool DeletionAdminKeyViewController::isLastKeyDeletion()
{
    const auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    return setting.adminSetting.toolLoginAuth &&
           controller->adminKeyArrayController->selectedObjects().size() == setting.adminSetting.adminKeys.size();
}

void DeletionAdminKeyViewController::removeFromSetting()
{
    constexpr auto function = "onClickOK(_:)";
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    for (const AdminKeyModel& row : controller->adminKeyArrayController->selectedObjects()) {
        logger.info("Remove administrator key. [Serial: " + row.serial() + "]", function);
        removeSerial(setting.adminSetting.adminKeys, row.serialUInt());
    }
    setting.write();
    logger.info("Update setting.", function);
}

void DeletionAdminKeyViewController::removeFromList()
{
    auto& rows = *controller->adminKeyArrayController;
    rows.removeAtArrangedObjectIndexes(rows.selectionIndexes());
    controller->clearTableSelection();
}

void DeletionAdminKeyViewController::finishRemoval()
{
    constexpr auto function = "onClickOK(_:)";
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    if (!setting.adminSetting.adminKeys.empty())
        return;
    logger.info("The administrator's login YubiKey setting does not exist.", function);
    setting.adminSetting.toolLoginAuth = false;
    setting.write();
    logger.info("Update setting. [Auth: false]", function);
    controller->adminModel.authCheckButtonModel.setIsEnabled(false);
    controller->adminModel.authCheckButtonModel.setState(false);
}

} // namespace vantro
