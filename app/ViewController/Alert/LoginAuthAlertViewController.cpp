#include "ViewController/Alert/LoginAuthAlertViewController.h"

#include <QDialogButtonBox>
#include <QEvent>

#include "AppDataSet.h"
#include "ApplicationVersion.h"
#include "LoginAuthAlertMessage.h"
#include "appkit/EnterKey.h"
#include "appkit/NSApplication.h"
#include "ui_LoginAuthAlertView.h"

namespace vantro {
namespace {

QString errorText(LoginAuthentication::AuthResult result)
{
    using AuthResult = LoginAuthentication::AuthResult;
    switch (result) {
    case AuthResult::Success:
        return {};
    case AuthResult::NotConnected:
        return LoginAuthAlertMessage::notConnectedYubiKey();
    case AuthResult::NotAdminYubiKey:
        return LoginAuthAlertMessage::notAdminKey();
    case AuthResult::CRFailure:
    case AuthResult::MultipleConnected:
    case AuthResult::SerialAcquisitionError:
        break;
    }
    return LoginAuthAlertMessage::authFailure();
}

} // namespace

LoginAuthAlertViewController::LoginAuthAlertViewController()
    : logger(AppDataSet::shared().logger.inFile("ViewController/Alert/LoginAuthAlertViewController"))
{
}

std::unique_ptr<QWidget> LoginAuthAlertViewController::loadView()
{
    auto view = std::make_unique<QWidget>();
    Ui::LoginAuthAlertView outlets;
    outlets.setupUi(view.get());
    authenticateButton = outlets.buttonBox->addButton(localizedString("LoginAuthAlertView", "authenticate_button"),
                                                      QDialogButtonBox::AcceptRole);
    QPushButton* const quitButton = outlets.buttonBox->addButton(localizedString("LoginAuthAlertView", "quit_button"),
                                                                 QDialogButtonBox::RejectRole);
    leaveEnterToDefaultButton(authenticateButton);
    leaveEnterToDefaultButton(quitButton);
    authenticateButton->setDefault(true);
    authenticateButton->installEventFilter(this);
    errorMessageLabelModel.bindTo(outlets.errorMessageLabel);
    reasonLabelModel.bindTo(outlets.reasonLabel);
    connect(authenticateButton, &QPushButton::clicked, this, [this] { onClickAuthenticate(authenticateButton); });
    connect(quitButton, &QPushButton::clicked, this, [this] { dismissController(); });
    return view;
}

void LoginAuthAlertViewController::viewDidLoad()
{
    constexpr auto function = "viewDidLoad()";
    logger.info("Start viewDidLoad.", function);
    errorMessageLabelModel.setTextColor(NSColor::Red);
    observe(TokenObstacleChanged, [this](const Notification&) { showReason(); });
    showReason();
    logger.info("Finished viewDidLoad.", function);
}

void LoginAuthAlertViewController::viewWillAppear()
{
    constexpr auto function = "viewWillAppear()";
    if (window() == nullptr)
        return;
    logger.info("Start viewWillAppear.", function);
    window()->setWindowTitle(windowTitleWithVersion());
    setWindowButtons(WindowButtons::Close);
    logger.info("Finished viewWillAppear.", function);
}

void LoginAuthAlertViewController::onClickAuthenticate(QObject* /*sender*/)
{
    // Seen at once.
    authenticateButton->setEnabled(false);
    errorMessageLabelModel.setTextColor(NSColor::LabelColor);
    errorMessageLabelModel.setText(localizedString("LoginAuthAlertView", "asking"));
    reasonLabelModel.setTextOrHide({});
    ServiceFailure failure;
    result = LoginAuthentication::authenticate(&failure);
    errorMessageLabelModel.setTextColor(NSColor::Red);
    errorMessageLabelModel.setText(errorText(result));
    showReason(failure);
    authenticateButton->setEnabled(true);
    authenticateButton->setFocus();
    if (result == LoginAuthentication::AuthResult::Success)
        dismissController();
}

void LoginAuthAlertViewController::showReason(const ServiceFailure& failure)
{
    const QString reason = failure.sentence();
    reasonLabelModel.setTextOrHide(reason.isEmpty() ? AppDataSet::shared().tokenObstacleText() : reason);
}

bool LoginAuthAlertViewController::eventFilter(QObject* watched, QEvent* event)
{
    // A double click starts one check.
    return (watched == authenticateButton && event->type() == QEvent::MouseButtonDblClick) ||
           NSViewController::eventFilter(watched, event);
}

void LoginAuthAlertViewController::viewDidDisappear()
{
    if (result == LoginAuthentication::AuthResult::Success)
        return;
    logger.info("Close application.", "viewDidDisappear()");
    NSApplication::terminate();
}

} // namespace vantro
