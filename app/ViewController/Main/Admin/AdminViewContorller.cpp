#include "ViewController/Main/Admin/AdminViewContorller.h"

#include <QCheckBox>

#include "AppDataSet.h"
#include "ui_AdminView.h"

namespace vantro {

AdminViewContorller::AdminViewContorller()
    : KeyListViewController({.source = "ViewController/Main/Admin/AdminViewContorller",
                             .finishedViewDidLoad = "Finished viewDidLoad.",
                             .startViewWillAppear = "Start viewWillAppear",
                             .registrationDialog = "RegistrationAdminKeyViewController",
                             .deletionDialog = "DeletionAdminKeyViewController"})
{
}

std::unique_ptr<QWidget> AdminViewContorller::loadView()
{
    auto view = std::make_unique<QWidget>();
    Ui::AdminView outlets;
    outlets.setupUi(view.get());
    adminKeyArrayController = makeSerialColumn(adminModel.adminKeyModels, "AdminView");
    connectOutlets({outlets.adminKeyTable, adminKeyArrayController.get(), outlets.emptyLabel, outlets.registerButton,
                    outlets.deleteButton});
    adminModel.authCheckButtonModel.bindTo(outlets.toolLoginAuthButton);
    const auto showHint = [this, hint = outlets.toolLoginAuthHintLabel] {
        hint->setHidden(adminModel.authCheckButtonModel.isEnabled());
    };
    connect(&adminModel.authCheckButtonModel, &SettingCheckButtonModel::changed, this, showHint);
    showHint();
    connect(outlets.toolLoginAuthButton, &QCheckBox::toggled, this,
            [this, box = outlets.toolLoginAuthButton] { onChangeToolLoginAuthButton(box); });
    return view;
}

void AdminViewContorller::rebuildRows()
{
    adminModel.adminKeyModels.set({});
    for (const YubiKey& key : AppDataSet::shared().vantroStandaloneSetting.adminSetting.adminKeys)
        adminModel.adminKeyModels.append(AdminKeyModel(key.serial));
}

void AdminViewContorller::finishUpdate()
{
    adminModel.authCheckButtonModel.setState(AppDataSet::shared().vantroStandaloneSetting.adminSetting.toolLoginAuth);
    adminModel.authCheckButtonModel.setIsEnabled(!adminModel.adminKeyModels.get().empty());
}

void AdminViewContorller::onChangeToolLoginAuthButton(QObject* /*sender*/)
{
    constexpr auto function = "onChangeToolLoginAuthButton(_:)";
    const bool isOn = adminModel.authCheckButtonModel.state();
    logger.info(std::string("Push CheckBox. [State: ") + (isOn ? "true" : "false") + "]", function);
    auto& setting = AppDataSet::shared().vantroStandaloneSetting;
    setting.adminSetting.toolLoginAuth = isOn;
    setting.write();
    logger.info("Update setting.", function);
}

} // namespace vantro
