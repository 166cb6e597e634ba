#pragma once

#include <functional>

#include <QAbstractButton>
#include <QObject>
#include <QVariant>

namespace vantro {

/// Shows one property of a model in a control: calls `apply` with the property's value now and after each change, for
/// as long as both live. The property must have a change signal. Main thread.
void bind(QObject* model, const char* property, QObject* control, std::function<void(const QVariant&)> apply);

/// Binds a Boolean property of a model to a check box, both ways. The check box then emits toggled() for what a user
/// does (by pointer, keyboard or assistive technology) and not for what the model does. Main thread.
void bindChecked(QObject* model, const char* property, QAbstractButton* control);

} // namespace vantro
