#pragma once

#include <zorvan/collections/IndexSet.h>

#include <algorithm>
#include <cstdint>

namespace zorvan {

/// What every list with a selection can be asked, and the ways to step its selection.
///
/// `List` derives from it and gives `count()`, `selection()` and `select(IndexSet)`. Stepping
/// clamps to the ends of the list, while `canSelectPrevious` and `canSelectNext` ask whether the
/// whole step fits.
template <class List>
class SelectionQueries {
public:
    /// Whether nothing, or exactly one, is selected.
    /// @{
    bool isSelectionEmpty() const noexcept { return list().selection().isEmpty(); }
    bool isSelectionSingle() const noexcept { return list().selection().isSingle(); }
    /// @}
    /// True for an empty list.
    bool isSelectionFull() const noexcept { return list().selection().count() == list().count(); }

    /// False when nothing is selected.
    bool canSelectPrevious(std::int64_t step = 1) const noexcept {
        return !isSelectionEmpty() && *list().selection().first() >= step;
    }
    /// False when nothing is selected.
    bool canSelectNext(std::int64_t step = 1) const noexcept {
        return !isSelectionEmpty() && stepped(step) <= list().count() - 1;
    }
    /// Whether `selectAll`, or `deselectAll`, would change anything.
    /// @{
    bool canSelectAll() const noexcept { return !isSelectionFull(); }
    bool canDeselectAll() const noexcept { return !isSelectionEmpty(); }
    /// @}

    /// Nothing for an empty list.
    void selectFirst() {
        if (list().count() > 0)
            list().select({0});
    }
    /// Selects the position `step` before the first selected one, or the first. Nothing happens
    /// when nothing is selected. A negative step goes the other way; beyond the end there is
    /// nothing to select, and the selection becomes empty.
    void selectPrevious(std::int64_t step = 1) {
        if (isSelectionEmpty())
            return;
        const std::int64_t first = *list().selection().first();
        const bool isTooFar = step < first - IndexSet::maximumIndex;
        selectAt(isTooFar ? IndexSet::maximumIndex : std::max<std::int64_t>(first - step, 0));
    }
    /// Selects the position `step` after the last selected one, or the last. Nothing happens when
    /// nothing is selected. A negative step goes the other way; before the start there is nothing
    /// to select, and the selection becomes empty.
    void selectNext(std::int64_t step = 1) {
        if (!isSelectionEmpty())
            selectAt(std::min(stepped(step), list().count() - 1));
    }
    /// Every position, or none.
    /// @{
    void selectAll() { list().select(allIndexes()); }
    void deselectAll() { list().select({}); }
    /// @}

protected:
    /// Every position of the list.
    IndexSet allIndexes() const { return IndexSet(IndexSet::Range{0, list().count()}); }

private:
    void selectAt(std::int64_t index) { list().select(index < 0 ? IndexSet() : IndexSet{index}); }

    List& list() noexcept { return static_cast<List&>(*this); }
    const List& list() const noexcept { return static_cast<const List&>(*this); }

    std::int64_t stepped(std::int64_t step) const noexcept {
        const std::int64_t last = *list().selection().last();
        return step > IndexSet::maximumIndex - last ? IndexSet::maximumIndex : last + step;
    }
};

} // namespace zorvan
