#pragma once

#include <QObject>
#include <QString>

#include "appkit/NSColor.h"

class QLabel;

namespace vantro {

/// What a bound text label shows. Main thread.
class LabelModel : public QObject
{
    Q_OBJECT

  public:
    enum class Visibility
    {
        Shown,
        Hidden
    };

    /// Without a text, in the standard colour.
    explicit LabelModel(Visibility visibility = Visibility::Shown) : isHidden_(visibility == Visibility::Hidden) {}

    [[nodiscard]] const QString& text() const { return text_; }
    void setText(const QString& text);
    [[nodiscard]] NSColor textColor() const { return textColor_; }
    void setTextColor(NSColor textColor);
    [[nodiscard]] bool isHidden() const { return isHidden_; }

    /// Sets the text, and hides the label while there is none: it takes no room then.
    void setTextOrHide(const QString& text);

    /// Shows this model in `label` for as long as both live.
    void bindTo(QLabel* label);

  Q_SIGNALS:
    void changed();

  private:
    QString text_;
    NSColor textColor_ = NSColor::LabelColor;
    bool isHidden_;
};

} // namespace vantro
