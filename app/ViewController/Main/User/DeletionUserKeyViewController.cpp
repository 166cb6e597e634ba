#include "ViewController/Main/User/DeletionUserKeyViewController.h"

#include <cstddef>
#include <numeric>
#include <vector>

#include "AppDataSet.h"
#include "CommonMessage.h"
#include "Model/KeySorting.h"
#include "UserViewMessage.h"
#include "ui_DeletionUserKeyView.h"

namespace vantro {

DeletionUserKeyViewController::DeletionUserKeyViewController()
    : DeletionFromListViewController("ViewController/Main/User/DeletionUserKeyViewController",
                                     {UserViewMessage::notSelectedForDeletion, CommonMessage::noRegistrationYubiKey})
{
}

std::unique_ptr<QWidget> DeletionUserKeyViewController::loadView()
{
    Ui::DeletionUserKeyView outlets;
    return loadForm(outlets, "DeletionUserKeyView");
}

QString DeletionUserKeyViewController::lineOf(const UserKeyModel& row) const
{
    return QString::fromStdString(row.account() + " : " + row.serial());
}

bool DeletionUserKeyViewController::isLastKeyDeletion()
{
    const auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    const std::size_t keyCount =
        std::accumulate(setting.users.begin(), setting.users.end(), std::size_t{0},
                        [](std::size_t count, const UserSetting& user) { return count + user.keys.size(); });
    return setting.switchSetting.secureMode && setting.masterKeySetting.masterKeys.empty() &&
           selectedRows().size() == keyCount;
}

void DeletionUserKeyViewController::removeFromSetting()
{
    constexpr auto function = "onClickOK(_:)";
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    logger.info("Update setting.", function);
    for (const UserKeyModel& row : selectedRows()) {
        logger.info("Remove allocated key. [Account: " + row.account() + ", Serial: " + row.serial() + "]", function);
        UserSetting* const user = firstUser(setting.users, row.account());
        // A row whose account has no entry any more has nothing to remove.
        if (user != nullptr)
            removeSerial(user->keys, row.serialUInt());
    }
    std::erase_if(setting.users, [](const UserSetting& user) { return user.keys.empty(); });
    setting.write();
}

} // namespace vantro
