#include "appkit/BusyPointer.h"

#include <QApplication>
#include <QWidget>

namespace vantro {
namespace {

bool hasWindows()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

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
    if (hasWindows())
        QApplication::restoreOverrideCursor();
}

} // namespace vantro
