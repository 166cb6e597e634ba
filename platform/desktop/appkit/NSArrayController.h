#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <vector>

#include <QAbstractTableModel>
#include <QPointer>
#include <QString>
#include <QTableView>

#include "appkit/KeyValueArray.h"

namespace vantro {

/// What does not depend on the rows' type: the table's model and its selection. A change of the content is noted in
/// constant time and arranged once, before the next read or paint; it clears the selection, as replaced rows do.
class NSArrayControllerBase : public QAbstractTableModel
{
    Q_OBJECT

  public:
    using RowIndexes = std::set<std::size_t>;

    /// Feeds `table` and takes its selection for the controller's own. Once.
    void setTableView(QTableView* table);

    /// The selected rows, ascending.
    [[nodiscard]] RowIndexes selectionIndexes();

    /// Selects exactly these rows.
    void setSelectionIndexes(const RowIndexes& indexes);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  protected:
    explicit NSArrayControllerBase(std::vector<QString> columnTitles);

    /// Brings model and table up to date with the content.
    void arrange();

    /// The content has changed.
    void setNeedsArrangement();

    bool event(QEvent* event) override;

    [[nodiscard]] virtual std::size_t contentCount() const = 0;
    [[nodiscard]] virtual QString text(std::size_t row, std::size_t column) const = 0;

  private:
    std::vector<QString> columnTitles_;
    QPointer<QTableView> table_;
    std::size_t arrangedCount_ = 0;
    bool needsArrangement_ = false;
};

/// Arranges the rows of an array property for a table, in the property's order. Main thread.
template <class Row>
class NSArrayController : public NSArrayControllerBase
{
  public:
    struct Column
    {
        QString title;
        std::function<QString(const Row&)> text;
    };

    /// `content` must live as long as the controller.
    NSArrayController(KeyValueArray<Row>& content, std::vector<Column> columns)
        : NSArrayControllerBase(titlesOf(columns)), content_(content), columns_(std::move(columns))
    {
        content_.observe([this] { setNeedsArrangement(); });
    }

    ~NSArrayController() override { content_.observe({}); }

    /// The selected rows in the table's order.
    [[nodiscard]] std::vector<Row> selectedObjects()
    {
        std::vector<Row> selected;
        for (const std::size_t index : selectionIndexes())
            selected.push_back(content_.get()[index]);
        return selected;
    }

    /// Removes rows from the content. The others keep their order.
    void removeAtArrangedObjectIndexes(const RowIndexes& indexes)
    {
        auto rows = content_.take();
        std::size_t row = 0;
        std::erase_if(rows, [&](const Row&) { return indexes.contains(row++); });
        content_.set(std::move(rows));
    }

  protected:
    [[nodiscard]] std::size_t contentCount() const override { return content_.get().size(); }
    [[nodiscard]] QString text(std::size_t row, std::size_t column) const override
    {
        return columns_[column].text(content_.get()[row]);
    }

  private:
    static std::vector<QString> titlesOf(const std::vector<Column>& columns)
    {
        std::vector<QString> titles;
        titles.reserve(columns.size());
        for (const Column& column : columns)
            titles.push_back(column.title);
        return titles;
    }

    KeyValueArray<Row>& content_;
    std::vector<Column> columns_;
};

} // namespace vantro
