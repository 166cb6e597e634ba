#include "CompositionRoot.h"

#include <memory>
#include <string>
#include <utility>

#include "AppDelegate.h"
#include "StartChecks.h"
#include "ViewController/Alert/LoginAuthAlertViewController.h"
#include "ViewController/Alert/MultipleConnectionsAlertViewController.h"
#include "ViewController/Main/Admin/AdminViewContorller.h"
#include "ViewController/Main/Admin/DeletionAdminKeyViewController.h"
#include "ViewController/Main/Admin/RegistrationAdminKeyViewController.h"
#include "ViewController/Main/Master/DeletionMasterKeyViewController.h"
#include "ViewController/Main/Master/MasterKeyViewController.h"
#include "ViewController/Main/Master/RegistrationMasterKeyViewController.h"
#include "ViewController/Main/Setting/SettingViewController.h"
#include "ViewController/Main/TabViewController.h"
#include "ViewController/Main/User/DeletionUserKeyViewController.h"
#include "ViewController/Main/User/RegistrationUserKeyViewController.h"
#include "ViewController/Main/User/UserViewController.h"
#include "appkit/NSStoryboard.h"
#include "appkit/StringTable.h"

namespace vantro {
namespace {

template <class Controller>
std::pair<const std::string, NSStoryboard::Factory> entry(const char* identifier)
{
    return {identifier, [] { return std::make_unique<Controller>(); }};
}

template <class Page>
std::unique_ptr<NSTabViewItem> tab(const char* identifier, const char* labelKey)
{
    return std::make_unique<NSTabViewItem>(QString::fromLatin1(identifier), localizedString("TabView", labelKey),
                                           std::make_unique<Page>());
}

std::unique_ptr<NSViewController> makeTabViewController()
{
    auto controller = std::make_unique<TabViewController>();
    controller->addTabViewItem(tab<SettingViewController>("Setting", "tab_settings"));
    controller->addTabViewItem(tab<UserViewController>("UserKey", "tab_user_keys"));
    controller->addTabViewItem(tab<MasterKeyViewController>("MasterKey", "tab_master_keys"));
    controller->addTabViewItem(tab<AdminViewContorller>("Admin", "tab_admin_keys"));
    controller->setInitialTabViewItem(QStringLiteral("UserKey"));
    return controller;
}

} // namespace

void installStoryboards()
{
    NSStoryboard::install({"Main",
                           {{"TabViewController", makeTabViewController},
                            entry<RegistrationUserKeyViewController>("RegistrationUserKeyViewController"),
                            entry<DeletionUserKeyViewController>("DeletionUserKeyViewController"),
                            entry<RegistrationMasterKeyViewController>("RegistrationMasterKeyViewController"),
                            entry<DeletionMasterKeyViewController>("DeletionMasterKeyViewController"),
                            entry<RegistrationAdminKeyViewController>("RegistrationAdminKeyViewController"),
                            entry<DeletionAdminKeyViewController>("DeletionAdminKeyViewController")}});
    NSStoryboard::install({"Alert",
                           {entry<LoginAuthAlertViewController>("LoginAuthAlertViewController"),
                            entry<MultipleConnectionsAlertViewController>("MultipleConnectionsAlertViewController")}});
}

MainStoryboard applicationStoryboard()
{
    installStoryboards();
    return {
        .mayLaunch = isOnlyTool,
        .makeDelegate = [] { return std::make_unique<AppDelegate>(); },
        .makeInitialController = [] { return NSStoryboard::named("Main").instantiateController("TabViewController"); },
        .stringTables = QStringLiteral(":/strings"),
        .desktopName = QStringLiteral("com.vantro.Standalone1"),
        .icons = {QStringLiteral(":/icons/com.vantro.Standalone1-16.png"),
                  QStringLiteral(":/icons/com.vantro.Standalone1-48.png")}};
}

} // namespace vantro
