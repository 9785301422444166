#pragma once

#include <tests/Testing.h>

#include <zorvan/collections/Reordering.h>

// The rules that the lists with a selection share, said once more and as plainly as can be.
namespace listmodel {

using Positions = std::set<std::int64_t>;

inline IndexSet indexSet(const Positions& members) {
    const std::vector<std::int64_t> list(members.begin(), members.end());
    return IndexSet::of(list);
}

template <class Item>
void removeFrom(std::vector<Item>& list, const Positions& positions) {
    for (auto p = positions.rbegin(); p != positions.rend(); ++p)
        list.erase(list.begin() + *p);
}

template <class Item>
std::int64_t moveIn(std::vector<Item>& list, const Positions& from, std::int64_t to) {
    std::vector<Item> moved;
    std::int64_t rank = 0, below = 0;
    for (const auto p : from) {
        below += p < to;
        moved.push_back(list[static_cast<std::size_t>(p - rank)]);
        list.erase(list.begin() + (p - rank++));
    }
    list.insert(list.begin() + (to - below), moved.begin(), moved.end());
    return to - below;
}

/// Serials tell elements apart: each that is still there must be where the list says that it went.
inline void expectFollowed(const std::vector<int>& before, const std::vector<int>& after,
                           const Reordering& reordering) {
    for (std::size_t i = 0; i < before.size(); ++i) {
        const auto found = std::find(after.begin(), after.end(), before[i]);
        ASSERT_EQ(reordering.newPosition(static_cast<std::int64_t>(i)).value_or(-1),
                  found == after.end() ? -1 : found - after.begin());
    }
    ASSERT_EQ(reordering.newPosition(-1), std::nullopt);
    ASSERT_EQ(reordering.newPosition(std::ssize(before)), std::nullopt);
}

template <class List>
void expectQueries(const List& list, const Positions& selected) {
    const std::int64_t count = list.count();
    const auto size = static_cast<std::int64_t>(selected.size());
    ASSERT_EQ(list.isSelectionEmpty(), size == 0);
    ASSERT_EQ(list.isSelectionSingle(), size == 1);
    ASSERT_EQ(list.isSelectionFull(), size == count);
    ASSERT_EQ(list.canSelectAll(), size != count);
    ASSERT_EQ(list.canDeselectAll(), size != 0);
    for (const std::int64_t step : {0, 1, 2, 7, -1, -9}) {
        ASSERT_EQ(list.canSelectPrevious(step), size > 0 && *selected.begin() - step >= 0);
        ASSERT_EQ(list.canSelectNext(step), size > 0 && *selected.rbegin() + step <= count - 1);
    }
}

} // namespace listmodel
