#pragma once

#include <tests/Testing.h>

#include <zorvan/collections/Reordering.h>

// The rules that the lists with a selection share, said once more and as plainly as can be.
namespace listmodel {

using Positions = std::set<std::int64_t>;

/// Draws numbers below another, or 0 when there are none, and positions of a list.
struct Lot {
    std::int64_t operator()(std::size_t below) {
        return static_cast<std::int64_t>(random() % std::max<std::size_t>(below, 1));
    }
    Positions positions(std::int64_t count) {
        Positions some;
        for (std::int64_t i = 0; i < count; ++i)
            if ((*this)(3) == 0)
                some.insert(i);
        return some;
    }

    std::mt19937 random;
};

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

/// What a list gives as its first, its last and its only selected element.
template <class Element>
void expectSelected(const std::vector<Element>& all, const IndexSet& selection,
                    const std::array<const Element*, 3>& given) {
    const std::array places{selection.first(), selection.last(), selection.singleIndex()};
    for (std::size_t i = 0; i < 3; ++i)
        ASSERT_EQ(given[i], places[i] ? &all[static_cast<std::size_t>(*places[i])] : nullptr);
}

} // namespace listmodel
