#include "appkit/EnterKey.h"

#include <memory>

#include <QKeyEvent>
#include <QPushButton>

namespace vantro {
namespace {

class EnterFilter : public QObject
{
  public:
    explicit EnterFilter(QPushButton* button) : QObject(button) {}

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key != Qt::Key_Return && key != Qt::Key_Enter)
            return false;
        const auto* const button = qobject_cast<QWidget*>(watched);
        const auto buttons = button->window()->findChildren<QPushButton*>();
        for (QPushButton* const candidate : buttons) {
            if (candidate->isDefault()) {
                if (candidate->isEnabled())
                    candidate->click();
                break;
            }
        }
        return true;
    }
};

} // namespace

void leaveEnterToDefaultButton(QPushButton* button)
{
    // Else the button becomes the default one as soon as it has the focus.
    button->setAutoDefault(false);
    button->installEventFilter(std::make_unique<EnterFilter>(button).release());
}

} // namespace vantro
