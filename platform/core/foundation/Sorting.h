#pragma once

#include <algorithm>
#include <iterator>
#include <utility>

namespace vantro {

/// Sorts stably by `isLess`, in linear time where all is in order already but for the last element, which was added.
template <class Elements, class IsLess>
void sortStably(Elements& elements, const IsLess& isLess)
{
    const auto first = std::begin(elements);
    const auto end = std::end(elements);
    const auto unsorted = std::is_sorted_until(first, end, isLess);
    if (unsorted == end)
        return;
    if (std::next(unsorted) != end) {
        std::stable_sort(first, end, isLess);
        return;
    }
    auto added = std::move(*unsorted);
    const auto place = std::upper_bound(first, unsorted, added, isLess);
    std::move_backward(place, unsorted, end);
    *place = std::move(added);
}

} // namespace vantro
