#include "ViewController/Main/User/UserViewController.h"

#include "AppDataSet.h"

namespace vantro {

UserViewController::UserViewController()
    : KeyListViewController({.source = "ViewController/Main/User/UserViewController",
                             .table = "UserView",
                             .finishedViewDidLoad = "Finished viewDidLoad.",
                             .startViewWillAppear = "Start viewWillAppear",
                             .registrationDialog = "RegistrationUserKeyViewController",
                             .deletionDialog = "DeletionUserKeyViewController"})
{
}

std::unique_ptr<QWidget> UserViewController::loadView()
{
    using Column = NSArrayController<UserKeyModel>::Column;
    allocatedKeysArrayController = std::make_unique<NSArrayController<UserKeyModel>>(
        userKeyModels,
        std::vector<Column>{{localizedString("UserView", "column_account"),
                             [](const UserKeyModel& row) { return QString::fromStdString(row.account()); }},
                            {localizedString("UserView", "column_serial"),
                             [](const UserKeyModel& row) { return QString::fromStdString(row.serial()); }}});
    return loadList(*allocatedKeysArrayController);
}

void UserViewController::rebuildRows()
{
    userKeyModels.set({});
    for (const UserSetting& user : AppDataSet::shared().vantroStandaloneSetting.users)
        for (const YubiKey& key : user.keys)
            userKeyModels.append(UserKeyModel(user.account, key.serial));
}

} // namespace vantro
