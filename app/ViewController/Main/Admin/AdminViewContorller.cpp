#include "ViewController/Main/Admin/AdminViewContorller.h"

#include <QBoxLayout>
#include <QCheckBox>

#include "AppDataSet.h"
#include "ui_AdminView.h"

namespace vantro {

AdminViewContorller::AdminViewContorller()
    : KeyListViewController({.source = "ViewController/Main/Admin/AdminViewContorller",
                             .table = "AdminView",
                             .finishedViewDidLoad = "Finished viewDidLoad.",
                             .startViewWillAppear = "Start viewWillAppear",
                             .registrationDialog = "RegistrationAdminKeyViewController",
                             .deletionDialog = "DeletionAdminKeyViewController"})
{
}

std::unique_ptr<QWidget> AdminViewContorller::loadView()
{
    adminKeyArrayController = makeSerialColumn(adminModel.adminKeyModels);
    auto view = loadList(*adminKeyArrayController);
    auto* const switchRow = new QWidget(view.get());
    Ui::AdminView outlets;
    outlets.setupUi(switchRow);
    qobject_cast<QBoxLayout*>(view->layout())->insertWidget(0, switchRow);
    // What stands first has the focus first.
    QWidget::setTabOrder(view.get(), outlets.toolLoginAuthButton);
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
