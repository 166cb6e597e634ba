#pragma once

#include <QPointer>
#include <QPushButton>
#include <QString>

#include "LoggerManager/Logger.h"
#include "appkit/NSViewController.h"

class QDialogButtonBox;

namespace vantro {

/// What the dialogs have that a person answers (the alert about several tokens has no buttons): the title with the
/// version, the log, an OK and a Cancel button, and Esc and the close button meaning Cancel. Main thread.
class DialogViewController : public NSViewController
{
    Q_OBJECT

  public:
    /// Actions of the two buttons; `sender` is not used.
    virtual void onClickOK(QObject* sender) = 0;

    /// Logs and dismisses; nothing else changes.
    virtual void onClickCancel(QObject* sender);

    void viewDidAppear() override;
    void cancelOperation() override { onClickCancel(this); }

    QPointer<QPushButton> OKButton;

  protected:
    /// `source` is the screen's name in the log.
    explicit DialogViewController(const LogSource& source);

    /// Which of the two buttons Enter presses.
    enum class DefaultButton
    {
        OK,
        Cancel
    };

    /// Puts both buttons into `box`, in the desktop's order.
    void addButtons(QDialogButtonBox* box, const QString& okTitle, const QString& cancelTitle, DefaultButton isDefault);

    /// Makes the OK button usable or not. Cancel gets the focus by a person's hand alone: when OK can't have it any
    /// more it rests on the content, and from there returns to OK as soon as that can be used.
    void setOKEnabled(bool isEnabled);

    /// For the screen itself.
    const Logger logger;
    /// For what a base does for the screen.
    const Logger baseLogger;

  private:
    QPointer<QPushButton> cancelButton_;
};

} // namespace vantro
