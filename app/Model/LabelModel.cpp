#include "Model/LabelModel.h"

#include <utility>

#include <QGuiApplication>
#include <QLabel>

#include "appkit/Bindings.h"

namespace vantro {

LabelModel::LabelModel(QString text, NSColor textColor, bool isHidden)
    : text_(std::move(text)), textColor_(textColor), isHidden_(isHidden)
{
}

void LabelModel::setText(const QString& text)
{
    text_ = text;
    Q_EMIT textChanged();
}

void LabelModel::setTextColor(NSColor textColor)
{
    textColor_ = textColor;
    Q_EMIT textColorChanged();
}

void LabelModel::setIsHidden(bool isHidden)
{
    isHidden_ = isHidden;
    Q_EMIT isHiddenChanged();
}

void LabelModel::bindTo(QLabel* label)
{
    bind(this, "text", label, [label](const QVariant& value) { label->setText(value.toString()); });
    bind(this, "isHidden", label, [label](const QVariant& value) { label->setHidden(value.toBool()); });
    bind(this, "textColor", label, [label](const QVariant& value) {
        const auto color = value.value<NSColor>();
        if (color == NSColor::LabelColor) {
            label->setPalette({});
            return;
        }
        QPalette palette;
        palette.setColor(QPalette::WindowText, resolved(color, QGuiApplication::palette()));
        label->setPalette(palette);
    });
}

} // namespace vantro
