#include "appkit/Bindings.h"

#include <utility>

#include <QMetaProperty>
#include <QSignalBlocker>

namespace vantro {
namespace {

/// Receives the change signal of one property and hands its value on. Owned by the control.
class PropertyRelay : public QObject
{
    Q_OBJECT

  public:
    PropertyRelay(QObject* model, QMetaProperty property, QObject* control, std::function<void(const QVariant&)> apply)
        : QObject(control), model_(model), property_(property), apply_(std::move(apply))
    {
        const QMetaMethod slot = metaObject()->method(metaObject()->indexOfSlot("relay()"));
        Q_ASSERT(property.hasNotifySignal());
        connect(model, property.notifySignal(), this, slot);
        relay();
    }

  private Q_SLOTS:
    void relay() { apply_(property_.read(model_)); }

  private:
    QObject* model_;
    QMetaProperty property_;
    std::function<void(const QVariant&)> apply_;
};

QMetaProperty propertyNamed(const QObject* model, const char* name)
{
    return model->metaObject()->property(model->metaObject()->indexOfProperty(name));
}

} // namespace

void bind(QObject* model, const char* property, QObject* control, std::function<void(const QVariant&)> apply)
{
    // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): the control owns it.
    new PropertyRelay(model, propertyNamed(model, property), control, std::move(apply));
}

void bindChecked(QObject* model, const char* property, QAbstractButton* control)
{
    bind(model, property, control, [control](const QVariant& value) {
        // A change of the model is no action of the user's.
        const QSignalBlocker blocker(control);
        control->setChecked(value.toBool());
    });
    const QMetaProperty bound = propertyNamed(model, property);
    QObject::connect(control, &QAbstractButton::toggled, model,
                     [model, bound](bool isChecked) { bound.write(model, isChecked); });
}

} // namespace vantro

#include "Bindings.moc"
