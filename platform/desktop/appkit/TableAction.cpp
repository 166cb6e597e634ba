#include "appkit/TableAction.h"

#include <utility>

#include <QEvent>
#include <QTimer>

namespace vantro {

TableAction::TableAction(QAbstractItemView* table, std::function<void()> action)
    : QObject(table), action_(std::move(action))
{
    table->viewport()->installEventFilter(this);
}

bool TableAction::eventFilter(QObject* watched, QEvent* event)
{
    // The filter sees the release before the table does.
    if (event->type() == QEvent::MouseButtonRelease)
        QTimer::singleShot(0, this, [this] { action_(); });
    return QObject::eventFilter(watched, event);
}

} // namespace vantro
