#include "ViewController/Main/User/DeletionUserKeyViewController.h"

#include "AppDataSet.h"
#include "CommonMessage.h"
#include "UserViewMessage.h"

namespace vantro {

DeletionUserKeyViewController::DeletionUserKeyViewController()
    : DeletionFromListViewController(
          "ViewController/Main/User/DeletionUserKeyViewController",
          {"DeletionUserKeyView", UserViewMessage::notSelectedForDeletion, CommonMessage::noRegistrationYubiKey})
{
}

QString DeletionUserKeyViewController::lineOf(const UserKeyModel& row) const
{
    return QString::fromStdString(row.account() + " : " + row.serial());
}

bool DeletionUserKeyViewController::isLastKeyDeletion()
{
    return AppDataSet::shared().vantroStandaloneSetting.areLastUserKeys(selectedRows().size());
}

void DeletionUserKeyViewController::removeFromSetting()
{
    constexpr auto function = "onClickOK(_:)";
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    logger.info("Update setting.", function);
    for (const UserKeyModel& row : selectedRows()) {
        logger.info("Remove allocated key. [Account: " + row.account() + ", Serial: " + row.serial() + "]", function);
        setting.removeUserKey(row.account(), row.serialUInt());
    }
    setting.removeUsersWithoutKeys();
    setting.write();
}

} // namespace vantro
