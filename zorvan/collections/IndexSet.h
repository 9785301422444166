#pragma once

#include <zorvan/collections/IndexPath.h>
#include <zorvan/platform/foundation/Required.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace zorvan {

/// A sorted set of positions: whole numbers from 0 to `maximumIndex`.
///
/// It is kept as a sorted list of ranges that neither overlap nor touch, so a selection of a
/// million rows in one block costs one range, and set algebra costs the number of ranges, not of
/// members. A negative position, or one above `maximumIndex`, stops the program, in every operation
/// that would store it; the questions (`contains` and its kin) accept any number.
class IndexSet {
public:
    /// Positions `lower` up to, not including, `upper`.
    struct Range {
        std::int64_t lower; ///< The first position.
        std::int64_t upper; ///< One past the last position.

        /// How many positions there are.
        constexpr std::int64_t count() const noexcept { return upper - lower; }
        friend constexpr bool operator==(const Range&, const Range&) noexcept = default;
    };

    /// Where a stretch begins and how long it is.
    struct LocLen {
        /// Not negative.
        /// @{
        Required<std::int64_t> loc;
        Required<std::int64_t> len;
        /// @}
    };
    /// The same with the long names.
    struct LocationLength {
        /// Not negative.
        /// @{
        Required<std::int64_t> location;
        Required<std::int64_t> length;
        /// @}
    };
    /// The two ends of a stretch, in either order.
    struct Ends {
        /// Itself in the set.
        /// @{
        Required<std::int64_t> i1;
        Required<std::int64_t> i2;
        /// @}
    };

    /// The largest position that a set can hold.
    static constexpr std::int64_t maximumIndex = std::numeric_limits<std::int64_t>::max() - 1;

    class Iterator;
    /// What the standard library asks of a container.
    /// @{
    using const_iterator = Iterator;
    using value_type = std::int64_t;
    /// @}

    IndexSet() = default;
    /// The given members, in any order.
    ///
    /// A template, so that the constructors from labels go before it: to g++ a literal 0 as the
    /// first value might be the address that a list of its own is made from.
    template <class = void>
    IndexSet(std::initializer_list<std::int64_t> members)
        : IndexSet(of(std::span(members.begin(), members.size()))) {}
    /// The positions of the range; none when it is empty.
    explicit IndexSet(Range range);
    /// The positions `loc` up to, not including, `loc + len`. A negative length stops the program.
    /// @{
    IndexSet(LocLen argument);
    IndexSet(LocationLength argument);
    /// @}
    /// Both ends included, in either order.
    IndexSet(Ends argument);
    /// A set of its own; what was moved from is empty.
    /// @{
    IndexSet(const IndexSet&) = default;
    IndexSet(IndexSet&& other) noexcept { swap(other); }
    IndexSet& operator=(const IndexSet&) = default;
    IndexSet& operator=(IndexSet&& other) noexcept {
        IndexSet taken(std::move(other));
        swap(taken);
        return *this;
    }
    /// @}
    /// The set of members given in any order; one sort, then one pass.
    static IndexSet of(std::span<const std::int64_t> members);

    /// Whether it has no member.
    bool isEmpty() const noexcept { return ranges_.empty(); }
    /// How many members there are; takes no time.
    std::int64_t count() const noexcept { return count_; }
    /// The smallest and the largest member; absent when there is none.
    /// @{
    std::optional<std::int64_t> first() const noexcept;
    std::optional<std::int64_t> last() const noexcept;
    /// @}

    /// The ranges, ascending, none empty, none touching the next. Valid until the set changes.
    std::span<const Range> ranges() const& noexcept { return {ranges_.data(), ranges_.size()}; }
    std::span<const Range> ranges() && = delete; // they would be gone before they were read
    /// Iterates over the members, ascending.
    /// @{
    Iterator begin() const noexcept;
    Iterator end() const noexcept;
    /// @}

    /// Whether the position, or every one of them, is a member. So it is for an empty range and an
    /// empty set.
    /// @{
    bool contains(std::int64_t index) const noexcept;
    bool contains(Range range) const noexcept;
    bool contains(const IndexSet& other) const noexcept;
    /// @}
    /// Whether any of them is a member.
    /// @{
    bool intersects(Range range) const noexcept;
    bool intersects(const IndexSet& other) const noexcept;
    /// @}
    /// How many members lie in the range.
    std::int64_t count(Range range) const noexcept;

    /// The member nearest to the position on that side; absent when there is none.
    /// @{
    std::optional<std::int64_t> integerGreaterThan(std::int64_t index) const noexcept;
    std::optional<std::int64_t> integerGreaterThanOrEqualTo(std::int64_t index) const noexcept;
    std::optional<std::int64_t> integerLessThan(std::int64_t index) const noexcept;
    std::optional<std::int64_t> integerLessThanOrEqualTo(std::int64_t index) const noexcept;
    /// @}

    /// Makes them members, if they are not yet.
    /// @{
    void insert(std::int64_t index);
    void insert(Range range);
    /// @}
    /// Takes them out; what is no member is passed over.
    /// @{
    void remove(std::int64_t index);
    void remove(Range range);
    void removeAll() noexcept;
    /// @}

    /// What is in either set, in both, in this one alone, and in one of the two alone. One pass
    /// over the ranges of both.
    /// @{
    [[nodiscard]] IndexSet union_(const IndexSet& other) const;
    [[nodiscard]] IndexSet intersection(const IndexSet& other) const;
    [[nodiscard]] IndexSet subtracting(const IndexSet& other) const;
    [[nodiscard]] IndexSet symmetricDifference(const IndexSet& other) const;
    /// @}
    /// Changes the set into what `union_`, `intersection`, `subtracting` or `symmetricDifference`
    /// gives.
    /// @{
    void formUnion(const IndexSet& other) { *this = union_(other); }
    void formIntersection(const IndexSet& other) { *this = intersection(other); }
    void subtract(const IndexSet& other) { *this = subtracting(other); }
    void formSymmetricDifference(const IndexSet& other) { *this = symmetricDifference(other); }
    /// @}

    /// Makes or closes room, as a list does when elements come or go: every member at or after
    /// `index` moves by `delta`. With a negative `delta`, the members of `index + delta ..< index`
    /// are dropped first, as are those that would fall below 0.
    void shift(std::int64_t index, std::int64_t delta);

    /// Where the members stand after a list has lost the elements at `removed`; a member that is
    /// one of them is dropped.
    [[nodiscard]] IndexSet afterRemoving(const IndexSet& removed) const;
    /// Where the members stand after a list has taken in elements, which stand at `inserted` then.
    [[nodiscard]] IndexSet afterInserting(const IndexSet& inserted) const;
    /// Where the members stand after a list has moved the elements at `from` before the one at `to`
    /// (positions before the move).
    [[nodiscard]] IndexSet afterMoving(const IndexSet& from, std::int64_t to) const;
    /// Where the members stand after a list of `count` elements has been reversed; all must be
    /// below `count`.
    [[nodiscard]] IndexSet afterReversing(std::int64_t count) const;
    /// Where the members stand after each new position of a list has got the element that stood at
    /// the old position given for it.
    [[nodiscard]] IndexSet afterPermuting(std::span<const std::int64_t> oldPositions) const;

    /// The only member when there is exactly one.
    std::optional<std::int64_t> singleIndex() const noexcept;
    /// Whether there is exactly one member.
    bool isSingle() const noexcept { return count_ == 1; }
    /// Removes the index when it is a member, else inserts it.
    void toggle(std::int64_t index);
    /// A copy after `toggle`, `insert` or `remove`.
    /// @{
    [[nodiscard]] IndexSet toggling(std::int64_t index) const;
    [[nodiscard]] IndexSet inserting(std::int64_t index) const;
    [[nodiscard]] IndexSet removing(std::int64_t index) const;
    /// @}

    /// The ranges in order: "{0...2, 5}".
    std::string description() const;

    /// An index path of the section for each member, as a collection view takes them.
    std::set<IndexPath> mapToIndexPaths(std::int64_t section = 0) const;

    /// Of the same members.
    friend bool operator==(const IndexSet& a, const IndexSet& b) noexcept {
        return a.count_ == b.count_ && a.ranges_ == b.ranges_;
    }

private:
    /// Leaves new elements as they are, for merges that write each before it is read.
    struct Allocator : std::allocator<Range> {
        template <class Other>
        struct rebind {
            using other = Allocator;
        };
        using std::allocator<Range>::allocator;
        void construct(Range* place) noexcept { ::new (static_cast<void*>(place)) Range; }
        void construct(Range* place, Range range) noexcept {
            ::new (static_cast<void*>(place)) Range(range);
        }
    };
    using Ranges = std::vector<Range, Allocator>;

    template <template <class> class Merge, class Second>
    static Ranges merge(std::span<const Range> a, Second b, Second bEnd);
    explicit IndexSet(Ranges ranges);
    void swap(IndexSet& other) noexcept {
        ranges_.swap(other.ranges_);
        std::swap(count_, other.count_);
    }
    std::size_t rangeEndingAfter(std::int64_t index) const noexcept;

    Ranges ranges_;
    std::int64_t count_ = 0;
};

/// Walks the members of an index set, ascending.
class IndexSet::Iterator {
public:
    /// What the standard library asks of an iterator.
    /// @{
    using iterator_category = std::forward_iterator_tag;
    using value_type = std::int64_t;
    using difference_type = std::int64_t;
    using pointer = const std::int64_t*;
    using reference = std::int64_t;
    /// @}

    Iterator() = default;

    /// The member at the place.
    std::int64_t operator*() const noexcept { return index_; }
    /// On to the next member.
    /// @{
    Iterator& operator++() noexcept {
        if (++index_ == range_->upper)
            enter(range_ + 1);
        return *this;
    }
    Iterator operator++(int) noexcept {
        Iterator before = *this;
        ++*this;
        return before;
    }
    /// @}
    /// At the same member of the same set.
    friend bool operator==(const Iterator& a, const Iterator& b) noexcept {
        return a.range_ == b.range_ && a.index_ == b.index_;
    }

private:
    friend class IndexSet;

    Iterator(const Range* range, const Range* end) noexcept : end_(end) { enter(range); }
    void enter(const Range* range) noexcept {
        range_ = range;
        index_ = range == end_ ? 0 : range->lower;
    }

    const Range* range_ = nullptr;
    const Range* end_ = nullptr;
    std::int64_t index_ = 0;
};

inline IndexSet::Iterator IndexSet::begin() const noexcept {
    return Iterator(ranges_.data(), ranges_.data() + ranges_.size());
}

inline IndexSet::Iterator IndexSet::end() const noexcept {
    const Range* end = ranges_.data() + ranges_.size();
    return Iterator(end, end);
}

/// The set that holds only `position`; a negative one stops the program.
[[nodiscard]] inline IndexSet toIndexSet(std::int64_t position) { return {position}; }

} // namespace zorvan

template <>
struct std::hash<zorvan::IndexSet> {
    std::size_t operator()(const zorvan::IndexSet& set) const noexcept;
};
