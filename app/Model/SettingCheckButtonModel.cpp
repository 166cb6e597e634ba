#include "Model/SettingCheckButtonModel.h"

#include <utility>

#include <QAbstractButton>
#include <QSignalBlocker>

namespace vantro {

void SettingCheckButtonModel::setState(bool state)
{
    const bool hasChanged = std::exchange(state_, state) != state;
    Q_EMIT changed();
    if (needNotification && hasChanged)
        NotificationCenter::defaultCenter().post(notification_);
}

void SettingCheckButtonModel::setIsEnabled(bool isEnabled)
{
    isEnabled_ = isEnabled;
    Q_EMIT changed();
}

void SettingCheckButtonModel::bindTo(QAbstractButton* checkBox)
{
    const auto show = [this, checkBox] {
        // A change of the model is no action of the user's: toggled() tells of those alone.
        const QSignalBlocker blocker(checkBox);
        checkBox->setChecked(state_);
        checkBox->setEnabled(isEnabled_);
    };
    connect(this, &SettingCheckButtonModel::changed, checkBox, show);
    connect(checkBox, &QAbstractButton::toggled, this, &SettingCheckButtonModel::setState);
    show();
}

} // namespace vantro
