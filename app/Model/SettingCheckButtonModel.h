#pragma once

#include <utility>

#include <QObject>

#include "foundation/NotificationCenter.h"

class QAbstractButton;

namespace vantro {

/// What a bound check box shows; can announce a change of its state by a notification. Main thread.
class SettingCheckButtonModel : public QObject
{
    Q_OBJECT

  public:
    /// Off and enabled; announces each change of its state by `notification`.
    explicit SettingCheckButtonModel(NotificationName notification) : notification_(std::move(notification)) {}

    [[nodiscard]] bool state() const { return state_; }

    /// Stores the state. When it differs from the old one and needNotification is set, posts the notification before it
    /// returns, with no object.
    void setState(bool state);

    [[nodiscard]] bool isEnabled() const { return isEnabled_; }
    void setIsEnabled(bool isEnabled);

    bool needNotification = true;

    /// Binds this model to a check box, both ways, for as long as both live.
    void bindTo(QAbstractButton* checkBox);

  Q_SIGNALS:
    void changed();

  private:
    bool state_ = false;
    bool isEnabled_ = true;
    NotificationName notification_;
};

} // namespace vantro
