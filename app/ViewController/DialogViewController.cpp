#include "ViewController/DialogViewController.h"

#include <QDialogButtonBox>

#include "AppDataSet.h"
#include "ApplicationVersion.h"
#include "appkit/EnterKey.h"

namespace vantro {

namespace {

/// What the toolkit gives the focus to when the window becomes the active one.
const QWidget* firstInFocus(const QWidget* window)
{
    if (const QWidget* const focus = window->focusWidget())
        return focus;
    const QWidget* widget = window->nextInFocusChain();
    while (widget != window &&
           (!widget->isEnabled() || !widget->isVisible() || (widget->focusPolicy() & Qt::TabFocus) == 0))
        widget = widget->nextInFocusChain();
    return widget;
}

} // namespace

DialogViewController::DialogViewController(const LogSource& source)
    : logger(AppDataSet::shared().logger.inFile(source.file)),
      baseLogger(AppDataSet::shared().logger.onBehalfOf(source))
{
    setTitle(windowTitleWithVersion());
}

void DialogViewController::onClickCancel(QObject* /*sender*/)
{
    baseLogger.info("Called onClickCancel.", "onClickCancel(_:)");
    dismissController();
}

void DialogViewController::addButtons(QDialogButtonBox* box, const QString& okTitle, const QString& cancelTitle,
                                      DefaultButton isDefault)
{
    OKButton = box->addButton(okTitle, QDialogButtonBox::AcceptRole);
    cancelButton_ = box->addButton(cancelTitle, QDialogButtonBox::RejectRole);
    leaveEnterToDefaultButton(OKButton);
    leaveEnterToDefaultButton(cancelButton_);
    QPushButton* const defaultButton = isDefault == DefaultButton::OK ? OKButton.data() : cancelButton_.data();
    defaultButton->setDefault(true);
    connect(OKButton, &QPushButton::clicked, this, [this] { onClickOK(OKButton); });
    connect(cancelButton_, &QPushButton::clicked, this, [this] { onClickCancel(cancelButton_); });
}

void DialogViewController::setOKEnabled(bool isEnabled)
{
    QWidget* const window = this->window();
    QWidget* const focus = window != nullptr ? window->focusWidget() : nullptr;
    if (!isEnabled && focus == OKButton)
        view()->setFocus();
    OKButton->setEnabled(isEnabled);
    if (isEnabled && (focus == nullptr || focus == view()))
        OKButton->setFocus();
}

void DialogViewController::viewDidAppear()
{
    NSViewController::viewDidAppear();
    // Some desktops have Cancel first.
    if (OKButton->isDefault() && firstInFocus(window()) == cancelButton_)
        (OKButton->isEnabled() ? OKButton.data() : view())->setFocus();
}

} // namespace vantro
