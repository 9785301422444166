#pragma once

#include <zorvan/interface/NSTableView.h>

#include <cstdint>

namespace zorvan {

/// Is told of each change of a table once the table has made it: by whoever shows the table, or a
/// test. Each function does nothing unless overridden.
class NSTableViewObserver {
public:
    virtual ~NSTableViewObserver() = default;

    /// Around what is told of nested updates: the outermost ones begin, and end.
    /// @{
    virtual void updatesDidBegin() {}
    virtual void updatesDidEnd() {}
    /// @}
    /// Positions of the new rows, now that all stand there.
    virtual void rowsInserted(const IndexSet& at, NSTableView::AnimationOptions animation);
    /// Positions that the rows had before.
    virtual void rowsRemoved(const IndexSet& at, NSTableView::AnimationOptions animation);
    /// The row that stood at `from` stands at `to`.
    virtual void rowMoved(std::int64_t from, std::int64_t to);
    /// The rows that stood at `from` stand before the one that stood at `to`. Unless overridden
    /// tells the moves of single rows that do this one after the other.
    virtual void rowsMoved(const IndexSet& from, std::int64_t to);
    /// What these cells show may be another.
    virtual void cellsReloaded(const IndexSet& rows, const IndexSet& columns);
    /// Everything may be another, the number of rows too.
    virtual void reloaded() {}
    /// The rows of an outline, which are told in no other way, are others now.
    virtual void visibleItemsDidChange() {}
    /// The rows may have other heights.
    virtual void rowHeightsDidChange(const IndexSet& rows);

    /// A column stands at the position.
    virtual void columnInserted(std::int64_t at);
    /// The column that stood at the position has gone.
    virtual void columnRemoved(std::int64_t at);
    /// Its title, its width, or whether it can be sorted by.
    virtual void columnDidChange(std::int64_t at);
    /// Another order, or none.
    virtual void sortOrderDidChange() {}

    /// Another selection.
    virtual void selectionDidChange() {}
    /// The row, which exists, is to be seen; the table has moved its clip view when it has one.
    virtual void scrolledTo(std::int64_t row);
};

} // namespace zorvan
