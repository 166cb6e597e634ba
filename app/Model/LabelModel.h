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
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(vantro::NSColor textColor READ textColor WRITE setTextColor NOTIFY textColorChanged)
    Q_PROPERTY(bool isHidden READ isHidden WRITE setIsHidden NOTIFY isHiddenChanged)

  public:
    LabelModel(QString text, NSColor textColor, bool isHidden);

    [[nodiscard]] const QString& text() const { return text_; }
    void setText(const QString& text);
    [[nodiscard]] NSColor textColor() const { return textColor_; }
    void setTextColor(NSColor textColor);
    [[nodiscard]] bool isHidden() const { return isHidden_; }
    void setIsHidden(bool isHidden);

    /// Sets the text, and hides the label while there is none: it takes no room then.
    void setTextOrHide(const QString& text);

    /// Shows this model in `label` for as long as both live.
    void bindTo(QLabel* label);

  Q_SIGNALS:
    void textChanged();
    void textColorChanged();
    void isHiddenChanged();

  private:
    QString text_;
    NSColor textColor_;
    bool isHidden_;
};

} // namespace vantro
