#pragma once

#include <QObject>

#include "foundation/NotificationCenter.h"

class QAbstractButton;

namespace vantro {

/// What a bound check box shows; can announce a change of its state by a notification. Main thread.
class SettingCheckButtonModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool state READ state WRITE setState NOTIFY stateChanged)
    Q_PROPERTY(bool isEnabled READ isEnabled WRITE setIsEnabled NOTIFY isEnabledChanged)

  public:
    SettingCheckButtonModel(bool state, bool isEnabled, bool needNotification, NotificationName notification);

    [[nodiscard]] bool state() const { return state_; }

    /// Stores the state. When it differs from the old one and needNotification is set, posts the notification before it
    /// returns, with no object.
    void setState(bool state);

    [[nodiscard]] bool isEnabled() const { return isEnabled_; }
    void setIsEnabled(bool isEnabled);

    bool needNotification;

    /// Binds this model to a check box, both ways, for as long as both live.
    void bindTo(QAbstractButton* checkBox);

  Q_SIGNALS:
    void stateChanged();
    void isEnabledChanged();

  private:
    bool state_;
    bool isEnabled_;
    NotificationName notification_;
};

} // namespace vantro
