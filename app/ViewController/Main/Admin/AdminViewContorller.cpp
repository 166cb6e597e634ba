#include "ViewController/Main/Admin/AdminViewContorller.h"

#include <utility>

#include <QCheckBox>

#include "AppDataSet.h"
#include "appkit/Bindings.h"
#include "ui_AdminView.h"

namespace vantro {

AdminViewContorller::AdminViewContorller()
    : KeyListViewController({.sourceFile = "ViewController/Main/Admin/AdminViewContorller",
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
    adminKeyTable = outlets.adminKeyTable;
    adminKeyArrayController = makeSerialColumn(adminModel.adminKeyModels, "AdminView");
    connectOutlets({adminKeyTable, adminKeyArrayController.get(), outlets.emptyLabel, outlets.registerButton,
                    outlets.deleteButton});
    adminModel.authCheckButtonModel.bindTo(outlets.toolLoginAuthButton);
    bind(&adminModel.authCheckButtonModel, "isEnabled", outlets.toolLoginAuthHintLabel,
         [hint = outlets.toolLoginAuthHintLabel](const QVariant& isEnabled) { hint->setHidden(isEnabled.toBool()); });
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
