#include "Model/LabelModel.h"

#include <memory>
#include <utility>

#include <QEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QPalette>

#include "appkit/Bindings.h"

namespace vantro {

namespace {

/// Gives a label a colour by its meaning, and anew whenever the theme changes.
class LabelColor : public QObject
{
  public:
    explicit LabelColor(QLabel* label) : QObject(label), label_(label) { label->installEventFilter(this); }

    void set(NSColor color)
    {
        color_ = color;
        if (color == NSColor::LabelColor)
            label_->setPalette({});
        else
            apply();
    }

  protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::PaletteChange && color_ != NSColor::LabelColor)
            apply();
        return false;
    }

  private:
    void apply()
    {
        const QColor wanted = resolved(color_, QGuiApplication::palette());
        // Setting it is a change of the palette, too.
        if (label_->palette().color(QPalette::WindowText) == wanted)
            return;
        QPalette palette;
        palette.setColor(QPalette::WindowText, wanted);
        label_->setPalette(palette);
    }

    QLabel* label_;
    NSColor color_ = NSColor::LabelColor;
};

} // namespace

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

void LabelModel::setTextOrHide(const QString& text)
{
    setText(text);
    setIsHidden(text.isEmpty());
}

void LabelModel::bindTo(QLabel* label)
{
    bind(this, "text", label, [label](const QVariant& value) { label->setText(value.toString()); });
    bind(this, "isHidden", label, [label](const QVariant& value) { label->setHidden(value.toBool()); });
    auto* const color = std::make_unique<LabelColor>(label).release();
    bind(this, "textColor", label, [color](const QVariant& value) { color->set(value.value<NSColor>()); });
}

} // namespace vantro
