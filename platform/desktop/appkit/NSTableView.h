#pragma once

#include <QTableView>

namespace vantro {

/// A table that takes the room that is left over and asks for no more than a few rows, so that a page with a table
/// scrolls only when its texts need all the room. Main thread.
class NSTableView : public QTableView
{
  public:
    using QTableView::QTableView;

    [[nodiscard]] QSize sizeHint() const override { return minimumSizeHint(); }
};

} // namespace vantro
