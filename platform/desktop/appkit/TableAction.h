#pragma once

#include <functional>

#include <QAbstractItemView>
#include <QObject>

namespace vantro {

/// The action of a table: called after each click into it, on a row or on its empty part, when the table has already
/// changed its selection. Owned by the table.
class TableAction : public QObject
{
    Q_OBJECT

  public:
    TableAction(QAbstractItemView* table, std::function<void()> action);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    std::function<void()> action_;
};

} // namespace vantro
