#pragma once

#include <memory>

#include <QFileSystemWatcher>
#include <QLabel>
#include <QPointer>

#include "LoggerManager/Logger.h"
#include "Model/SettingCheckButtonModel.h"
#include "Model/TokenDemand.h"
#include "appkit/NSViewController.h"

namespace vantro {

/// The settings page: the forced logon and the screen lock switch. Forced logon can be switched on while some token
/// opens an account; it changes the add-on's PAM entries first and the document only when that succeeded. Main thread.
class SettingViewController : public NSViewController
{
    Q_OBJECT

  public:
    SettingViewController();

    void viewDidLoad() override;
    void viewWillAppear() override;

    SettingCheckButtonModel screenLockModel;
    SettingCheckButtonModel forcedYubiKeyLogonModel;
    QPointer<QLabel> forcedYubiKeyLogonWarning;

  protected:
    std::unique_ptr<QWidget> loadView() override;

  private:
    void updateScreenLockModel();
    void updateForcedYubiKeyModel();
    void restoreForcedYubiKeyModel();
    void showStatus();
    void showDemand();

    const Logger logger;
    QPointer<QLabel> statusLabel_;
    QPointer<QLabel> demandLabel_;
    const TokenDemand demand_{TokenDemand::installedFolders()};
    /// Tells when somebody else changes what the demand comes to, such as pam-auth-update.
    QFileSystemWatcher pamFolders_;
};

} // namespace vantro
