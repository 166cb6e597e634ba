#include "appkit/NSArrayController.h"

#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QItemSelection>
#include <QItemSelectionModel>

namespace vantro {
namespace {

QEvent::Type arrangeEvent()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

} // namespace

NSArrayControllerBase::NSArrayControllerBase(std::vector<QString> columnTitles) : columnTitles_(std::move(columnTitles))
{
}

void NSArrayControllerBase::setTableView(QTableView* table)
{
    table_ = table;
    table->setModel(this);
}

NSArrayControllerBase::RowIndexes NSArrayControllerBase::selectionIndexes()
{
    arrange();
    RowIndexes indexes;
    if (table_)
        for (const QModelIndex& index : table_->selectionModel()->selectedRows())
            indexes.insert(static_cast<std::size_t>(index.row()));
    return indexes;
}

void NSArrayControllerBase::setSelectionIndexes(const RowIndexes& indexes)
{
    arrange();
    if (!table_)
        return;
    QItemSelection selection;
    const int lastColumn = columnCount() - 1;
    for (const std::size_t row : indexes)
        selection.select(index(static_cast<int>(row), 0), index(static_cast<int>(row), lastColumn));
    table_->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

int NSArrayControllerBase::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(arrangedCount_);
}

int NSArrayControllerBase::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(columnTitles_.size());
}

QVariant NSArrayControllerBase::data(const QModelIndex& index, int role) const
{
    // Between a change and its arrangement the content may be shorter than what the table still shows.
    const auto row = static_cast<std::size_t>(index.row());
    if (role != Qt::DisplayRole || !index.isValid() || row >= contentCount())
        return {};
    return text(row, static_cast<std::size_t>(index.column()));
}

QVariant NSArrayControllerBase::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return columnTitles_.at(static_cast<std::size_t>(section));
    return QAbstractTableModel::headerData(section, orientation, role);
}

void NSArrayControllerBase::arrange()
{
    if (!needsArrangement_)
        return;
    needsArrangement_ = false;
    beginResetModel();
    arrangedCount_ = contentCount();
    endResetModel();
}

void NSArrayControllerBase::setNeedsArrangement()
{
    if (std::exchange(needsArrangement_, true))
        return;
    // Ahead of the paint events that are waiting.
    QCoreApplication::postEvent(this, std::make_unique<QEvent>(arrangeEvent()).release(), Qt::HighEventPriority);
}

bool NSArrayControllerBase::event(QEvent* event)
{
    if (event->type() != arrangeEvent())
        return QAbstractTableModel::event(event);
    arrange();
    return true;
}

} // namespace vantro
