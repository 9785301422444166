#pragma once

#include <zorvan/collections/IndexSet.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace zorvan::internal {

/// Rows of a list that come, go or move, and where every other row stands afterwards. Each question
/// costs the logarithm of the number of ranges.
class RowChange {
public:
    /// Positions once all have been inserted.
    static RowChange inserting(const IndexSet& at) { return RowChange({}, at); }
    /// Positions before any has been removed.
    static RowChange removing(const IndexSet& at) { return RowChange(at, {}); }
    /// First some go, then others come.
    static RowChange replacing(const IndexSet& gone, const IndexSet& come) {
        return RowChange(gone, come);
    }
    /// Before the row at `to`; positions before the move.
    static RowChange moving(const IndexSet& from, std::int64_t to);

    /// Positions before, and after. Of a move they are the same rows, in the same order.
    const IndexSet& gone() const noexcept { return gone_; }
    const IndexSet& come() const noexcept { return come_; }
    /// How many more rows there are afterwards.
    std::int64_t growth() const noexcept { return come_.count() - gone_.count(); }
    /// Where the row stands afterwards, -1 for one that has gone.
    std::int64_t place(std::int64_t row) const;
    /// Where the members stand afterwards.
    IndexSet places(const IndexSet& rows) const;

private:
    RowChange(IndexSet gone, IndexSet come, std::optional<std::int64_t> to = {});

    IndexSet gone_, come_;
    /// Before which row, of a move.
    std::optional<std::int64_t> to_;
    /// How many positions the ranges before each one hold.
    std::vector<std::int64_t> goneBefore_, comeBefore_;
};

} // namespace zorvan::internal
