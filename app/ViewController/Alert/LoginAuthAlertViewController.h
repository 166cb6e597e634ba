#pragma once

#include <memory>

#include <QPointer>
#include <QPushButton>

#include "LoggerManager/Logger.h"
#include "LoginAuthentication.h"
#include "Model/LabelModel.h"
#include "appkit/NSViewController.h"

namespace vantro {

/// The tool's sign-in: asks for an administrator key, as often as the user likes. A dialog that disappears in any way
/// but a success ends the process. Main thread.
class LoginAuthAlertViewController : public NSViewController
{
    Q_OBJECT

  public:
    LoginAuthAlertViewController();

    void viewDidLoad() override;
    void viewWillAppear() override;
    void viewDidDisappear() override;

    /// Action of the sign-in button; `sender` is not used.
    void onClickAuthenticate(QObject* sender);

    QPointer<QPushButton> authenticateButton;
    LabelModel errorMessageLabelModel;
    /// Below the error: why the service did not confirm the token, or why a token that is plugged in can't be checked.
    LabelModel reasonLabelModel{LabelModel::Visibility::Hidden};

  protected:
    std::unique_ptr<QWidget> loadView() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    /// Shows what is known of `failure`, or else what is in the token's way.
    void showReason(const ServiceFailure& failure = {});

    const Logger logger;
    LoginAuthentication::AuthResult result = LoginAuthentication::AuthResult::CRFailure;
};

} // namespace vantro
