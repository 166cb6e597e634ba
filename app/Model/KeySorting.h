#pragma once

#include <compare>
#include <utility>
#include <vector>

#include "Model/KeyModels.h"
#include "appkit/KeyValueArray.h"
#include "foundation/Sorting.h"
#include "foundation/Text.h"

namespace vantro {

/// The orders in which the lists keep their rows. Every sort is stable. Main thread.

/// Rows by their serial.
template <class Row>
void sortRows(std::vector<Row>& rows)
{
    sortStably(rows, [](const Row& left, const Row& right) { return left.serialUInt() < right.serialUInt(); });
}

/// Rows by account as the document's users, then by serial.
inline void sortRows(std::vector<UserKeyModel>& rows)
{
    sortStably(rows, [](const UserKeyModel& left, const UserKeyModel& right) {
        const auto order = compareCanonically(left.account(), right.account());
        return std::is_neq(order) ? std::is_lt(order) : left.serialUInt() < right.serialUInt();
    });
}

/// Stores the rows with one more row, and then once more in their order.
template <class Row>
void appendSorted(KeyValueArray<Row>& property, Row row)
{
    property.append(std::move(row));
    auto rows = property.take();
    sortRows(rows);
    property.set(std::move(rows));
}

} // namespace vantro
