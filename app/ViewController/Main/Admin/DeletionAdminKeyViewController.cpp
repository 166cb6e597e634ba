#include "ViewController/Main/Admin/DeletionAdminKeyViewController.h"

#include "AdminViewMessage.h"
#include "AppDataSet.h"

namespace vantro {

DeletionAdminKeyViewController::DeletionAdminKeyViewController()
    : DeletionFromListViewController("ViewController/Main/Admin/DeletionAdminKeyViewController",
                                     {"DeletionAdminKeyView", AdminViewMessage::notSelectedForDeletion,
                                      AdminViewMessage::noRegistrationAdminYubiKey})
{
}

bool DeletionAdminKeyViewController::isLastKeyDeletion()
{
    return AppDataSet::shared().vantroStandaloneSetting.areLastAdminKeys(selectedRows().size());
}

void DeletionAdminKeyViewController::removeFromSetting()
{
    constexpr auto function = "onClickOK(_:)";
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    for (const AdminKeyModel& row : selectedRows()) {
        logger.info("Remove administrator key. [Serial: " + row.serial() + "]", function);
        removeSerial(setting.adminSetting.adminKeys, row.serialUInt());
    }
    setting.write();
    logger.info("Update setting.", function);
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
    list()->adminModel.authCheckButtonModel.setIsEnabled(false);
    list()->adminModel.authCheckButtonModel.setState(false);
}

} // namespace vantro
