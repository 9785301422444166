#include <zorvan/interface/internal/RowChange.h>

#include <algorithm>
#include <span>
#include <utility>

namespace zorvan::internal {

namespace {

using Range = IndexSet::Range;

std::vector<std::int64_t> countsBefore(const IndexSet& set) {
    std::vector<std::int64_t> counts;
    counts.reserve(set.ranges().size() + 1);
    std::int64_t count = 0;
    for (const Range range : set.ranges()) {
        counts.push_back(count);
        count += range.count();
    }
    counts.push_back(count);
    return counts;
}

} // namespace

RowChange::RowChange(IndexSet gone, IndexSet come, std::optional<std::int64_t> to)
    : gone_(std::move(gone)), come_(std::move(come)), to_(to), goneBefore_(countsBefore(gone_)),
      comeBefore_(countsBefore(come_)) {}

RowChange RowChange::moving(const IndexSet& from, std::int64_t to) {
    const std::int64_t landing = to - from.count(Range{0, to});
    return RowChange(from, IndexSet(Range{landing, landing + from.count()}), to);
}

std::int64_t RowChange::place(std::int64_t row) const {
    const std::span<const Range> gone = gone_.ranges(), come = come_.ranges();
    const auto range = std::upper_bound(gone.begin(), gone.end(), row,
                                        [](std::int64_t at, Range r) { return at < r.upper; });
    std::int64_t before = goneBefore_[static_cast<std::size_t>(range - gone.begin())];
    if (range != gone.end() && range->lower <= row) {
        before += row - range->lower;
        return to_ ? come.front().lower + before : -1;
    }
    const std::int64_t staying = row - before;
    // Each range that comes opens its gap where it will stand once those before it have come.
    std::size_t first = 0, end = come.size();
    while (first < end) {
        const std::size_t middle = first + (end - first) / 2;
        if (come[middle].lower - comeBefore_[middle] <= staying)
            first = middle + 1;
        else
            end = middle;
    }
    return staying + comeBefore_[first];
}

IndexSet RowChange::places(const IndexSet& rows) const {
    return to_ ? rows.afterMoving(gone_, *to_) : rows.afterRemoving(gone_).afterInserting(come_);
}

} // namespace zorvan::internal
