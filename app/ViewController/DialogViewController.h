#pragma once

#include <QPointer>
#include <QPushButton>
#include <QString>

#include "LoggerManager/Logger.h"
#include "appkit/NSViewController.h"

class QDialogButtonBox;

namespace vantro {

/// What every dialog of the tool has: the title with the version, the log, an OK and a Cancel button, and Esc and the
/// close button meaning Cancel. Main thread.
class DialogViewController : public NSViewController
{
    Q_OBJECT

  public:
    /// Actions of the two buttons; `sender` is not used.
    virtual void onClickOK(QObject* sender) = 0;

    /// Logs and dismisses; nothing else changes.
    virtual void onClickCancel(QObject* sender);

    void cancelOperation() override { onClickCancel(this); }

    QPointer<QPushButton> OKButton;

  protected:
    /// `sourceFile` is the screen's name in the log.
    explicit DialogViewController(const char* sourceFile);

    /// Which of the two buttons Enter presses.
    enum class DefaultButton
    {
        OK,
        Cancel
    };

    /// Puts both buttons into `box`, in the desktop's order.
    void addButtons(QDialogButtonBox* box, const QString& okTitle, const QString& cancelTitle, DefaultButton isDefault);

    const Logger logger;
};

} // namespace vantro
