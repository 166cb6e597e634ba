#include "Model/SettingCheckButtonModel.h"

#include <utility>

#include <QAbstractButton>

#include "appkit/Bindings.h"

namespace vantro {

SettingCheckButtonModel::SettingCheckButtonModel(bool state, bool isEnabled, bool needsNotification,
                                                 NotificationName notification)
    : needNotification(needsNotification), state_(state), isEnabled_(isEnabled), notification_(std::move(notification))
{
}

void SettingCheckButtonModel::setState(bool state)
{
    const bool hasChanged = std::exchange(state_, state) != state;
    Q_EMIT stateChanged();
    if (needNotification && hasChanged)
        NotificationCenter::defaultCenter().post(notification_);
}

void SettingCheckButtonModel::setIsEnabled(bool isEnabled)
{
    isEnabled_ = isEnabled;
    Q_EMIT isEnabledChanged();
}

void SettingCheckButtonModel::bindTo(QAbstractButton* checkBox)
{
    bindChecked(this, "state", checkBox);
    bind(this, "isEnabled", checkBox, [checkBox](const QVariant& value) { checkBox->setEnabled(value.toBool()); });
}

} // namespace vantro
