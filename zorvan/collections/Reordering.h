#pragma once

#include <zorvan/collections/IndexSet.h>

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace zorvan {

/// Where the elements of a list stand after one change of it: for each old position the new one, or
/// nothing when the element is gone. It follows the elements themselves, so equal ones are told
/// apart.
///
/// A list makes it when it is asked (`ManagedList::reordering`, `SelectableArray::reordering`), for
/// whoever holds positions that outlive changes. The positions given to the functions that make it
/// must be such as the change itself accepts; `count` is that of the list before the change.
class Reordering {
public:
    /// Everything stays where it is.
    static Reordering none(std::int64_t count);
    /// Every element is gone.
    static Reordering removingAll() { return Reordering(std::vector<std::int64_t>{}); }
    /// `inserted` new elements come before the one at `at`.
    static Reordering inserting(std::int64_t count, std::int64_t at, std::int64_t inserted);
    /// The elements at the positions are gone.
    static Reordering removing(std::int64_t count, const IndexSet& at);
    /// The elements at `from` move before the one at `to`, or to the end when `to` is the count.
    static Reordering moving(std::int64_t count, const IndexSet& from, std::int64_t to);
    /// The first one is the last one then.
    static Reordering reversing(std::int64_t count);
    /// Each new position holds what stood at the old position given for it.
    static Reordering permuting(std::span<const std::int64_t> oldPositions);
    /// Of a list of `count` elements other ones are shown than before, both times in any order. A
    /// position in the list is given for each shown element, a negative one for an element that is
    /// none of the list's; absent stands for showing all of them.
    static Reordering refiltering(std::int64_t count,
                                  std::optional<std::span<const std::int64_t>> before,
                                  std::optional<std::span<const std::int64_t>> after);

    /// The position of what stood at `old`; absent when it is gone, and for an `old` that was no
    /// position of the list.
    std::optional<std::int64_t> newPosition(std::int64_t old) const noexcept;

    /// Sends each of the positions to its new one; a position without one becomes -1. Quickest when
    /// the positions ascend.
    void apply(std::span<std::int64_t> positions) const noexcept;

private:
    /// From `lower` up to the next stretch, what stood at p stands at `offset + sign * p`; a
    /// negative number means that it is gone.
    struct Stretch {
        std::int64_t lower;
        std::int64_t sign;
        std::int64_t offset;
    };

    explicit Reordering(std::vector<Stretch> stretches) : stretches_(std::move(stretches)) {}
    explicit Reordering(std::vector<std::int64_t> newPositions)
        : newPositions_(std::move(newPositions)) {}
    std::size_t stretchOf(std::int64_t position) const noexcept;

    /// One of the two: stretches from 0 on, the last one for what is past the end; or, for changes
    /// that keep no stretch together, the new position of each old one, -1 for none.
    std::vector<Stretch> stretches_;
    std::vector<std::int64_t> newPositions_;
};

} // namespace zorvan
