#include "Model/LabelModel.h"

#include <memory>

#include <QEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QPalette>

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

void LabelModel::setText(const QString& text)
{
    text_ = text;
    Q_EMIT changed();
}

void LabelModel::setTextColor(NSColor textColor)
{
    textColor_ = textColor;
    Q_EMIT changed();
}

void LabelModel::setTextOrHide(const QString& text)
{
    isHidden_ = text.isEmpty();
    setText(text);
}

void LabelModel::bindTo(QLabel* label)
{
    auto* const color = std::make_unique<LabelColor>(label).release();
    const auto show = [this, label, color] {
        label->setText(text_);
        label->setHidden(isHidden_);
        color->set(textColor_);
    };
    connect(this, &LabelModel::changed, label, show);
    show();
}

} // namespace vantro
