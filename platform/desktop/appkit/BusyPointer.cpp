#include "appkit/BusyPointer.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QWidget>

#include "foundation/DispatchQueue.h"

namespace vantro {
namespace {

bool hasWindows()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

/// Takes what a person does with keys, pointer and window frame, before it reaches any window.
class InputSink : public QObject
{
  protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ShortcutOverride:
        case QEvent::Shortcut:
        case QEvent::InputMethod:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TabletPress:
        case QEvent::TabletRelease:
        case QEvent::ContextMenu:
        case QEvent::Close:
            return event->spontaneous();
        default:
            return false;
        }
    }
};

} // namespace

BusyPointer::BusyPointer()
{
    if (!hasWindows())
        return;
    for (QWidget* const window : QApplication::topLevelWidgets())
        if (window->isVisible())
            window->repaint();
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

BusyPointer::~BusyPointer()
{
    if (!hasWindows())
        return;
    InputSink sink;
    QCoreApplication::instance()->installEventFilter(&sink);
    // The display answers in order: with the pointer's place, all that came before is here.
    static_cast<void>(QCursor::pos());
    // What other threads have handed over waits for its turn.
    DispatchQueue::main().suspend();
    QCoreApplication::processEvents();
    DispatchQueue::main().resume();
    QApplication::restoreOverrideCursor();
}

} // namespace vantro
