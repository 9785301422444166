#include <zorvan/collections/IndexSet.h>

#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <memory>

namespace zorvan {

namespace {

using Range = IndexSet::Range;

constexpr std::int64_t endOfPositions = IndexSet::maximumIndex + 1;

Range checked(Range range) {
    if (range.lower < 0)
        fatalError("An index set holds no negative positions.");
    if (range.upper < range.lower)
        fatalError("A range of an index set ends before it begins.");
    return range;
}

Range single(std::int64_t index) {
    if (index > IndexSet::maximumIndex)
        fatalError("A position of an index set is too large.");
    return checked({index, index < 0 ? index : index + 1});
}

Range located(std::int64_t location, std::int64_t length) {
    if (length < 0)
        fatalError("A range of an index set ends before it begins.");
    if (location > endOfPositions - length)
        fatalError("A position of an index set is too large.");
    return checked({location, location < 0 ? location : location + length});
}

/// Room for the result of a merge; its memory is not cleared first.
struct Scratch {
    explicit Scratch(std::size_t capacity)
        : ranges(std::make_unique_for_overwrite<Range[]>(capacity)) {}

    std::span<const Range> upTo(std::size_t count) const { return {ranges.get(), count}; }

    std::unique_ptr<Range[]> ranges;
};

// The merges below run over sets whose ranges interleave without a pattern, where a branch on which
// side comes next is mispredicted half of the time: so their steps select instead of branching.

std::size_t unite(std::span<const Range> a, std::span<const Range> b, Range* out) {
    std::size_t i = 0, j = 0, written = 0;
    Range current = a[0].lower <= b[0].lower ? a[i++] : b[j++];
    const auto take = [&](const Range next) {
        const bool apart = next.lower > current.upper;
        out[written] = current;
        written += apart;
        current.lower = apart ? next.lower : current.lower;
        current.upper = std::max(current.upper, next.upper);
    };
    while (i < a.size() && j < b.size()) {
        const bool fromA = a[i].lower <= b[j].lower;
        const Range* next = fromA ? &a[i] : &b[j];
        i += fromA;
        j += !fromA;
        take(*next);
    }
    for (; i < a.size(); ++i)
        take(a[i]);
    for (; j < b.size(); ++j)
        take(b[j]);
    out[written++] = current;
    return written;
}

/// The common part of two ascending lists of ranges, the second given by a function of its
/// position.
template <class RangeAt>
std::size_t intersect(std::span<const Range> a, std::size_t bCount, RangeAt bAt, Range* out) {
    std::size_t i = 0, j = 0, written = 0;
    while (i < a.size() && j < bCount) {
        const Range x = a[i];
        const Range y = bAt(j);
        const std::int64_t lower = std::max(x.lower, y.lower);
        const std::int64_t upper = std::min(x.upper, y.upper);
        out[written] = {lower, upper};
        written += lower < upper;
        i += x.upper <= y.upper;
        j += y.upper <= x.upper;
    }
    return written;
}

} // namespace

IndexSet::IndexSet(std::initializer_list<std::int64_t> members) {
    *this = of(std::span(members.begin(), members.size()));
}

IndexSet::IndexSet(Range range) {
    if (checked(range).count() > 0) {
        ranges_.push_back(range);
        count_ = range.count();
    }
}

IndexSet::IndexSet(LocLen argument) : IndexSet(located(argument.loc, argument.len)) {}

IndexSet::IndexSet(LocationLength argument)
    : IndexSet(located(argument.location, argument.length)) {}

IndexSet::IndexSet(Ends argument)
    : IndexSet(Range{single(std::min<std::int64_t>(argument.i1, argument.i2)).lower,
                     single(std::max<std::int64_t>(argument.i1, argument.i2)).upper}) {}

IndexSet::IndexSet(std::span<const Range> ranges) : ranges_(ranges.begin(), ranges.end()) {
    for (const Range range : ranges)
        count_ += range.count();
}

IndexSet IndexSet::of(std::span<const std::int64_t> members) {
    IndexSet set;
    if (std::is_sorted(members.begin(), members.end())) {
        for (const std::int64_t member : members)
            set.insert(member);
        return set;
    }
    std::vector<std::int64_t> sorted(members.begin(), members.end());
    std::sort(sorted.begin(), sorted.end());
    for (const std::int64_t member : sorted)
        set.insert(member);
    return set;
}

std::optional<std::int64_t> IndexSet::first() const noexcept {
    return isEmpty() ? std::nullopt : std::optional(ranges_.front().lower);
}

std::optional<std::int64_t> IndexSet::last() const noexcept {
    return isEmpty() ? std::nullopt : std::optional(ranges_.back().upper - 1);
}

/// The place of the first range whose last member is `index` or later.
std::size_t IndexSet::rangeEndingAfter(std::int64_t index) const noexcept {
    const Range* base = ranges_.data();
    std::size_t length = ranges_.size();
    while (length > 1) {
        const std::size_t half = length / 2;
        // Multiplied, not branched on: the answer is a coin toss to the processor.
        base += half * static_cast<std::size_t>(base[half - 1].upper <= index);
        length -= half;
    }
    const auto place = static_cast<std::size_t>(base - ranges_.data());
    return place + (length == 1 && base->upper <= index);
}

bool IndexSet::contains(std::int64_t index) const noexcept {
    const std::size_t place = rangeEndingAfter(index);
    return place < ranges_.size() && ranges_[place].lower <= index;
}

bool IndexSet::contains(Range range) const noexcept {
    if (range.count() <= 0)
        return true;
    const std::size_t place = rangeEndingAfter(range.lower);
    return place < ranges_.size() && ranges_[place].lower <= range.lower &&
           range.upper <= ranges_[place].upper;
}

bool IndexSet::contains(const IndexSet& other) const noexcept {
    return std::all_of(other.ranges_.begin(), other.ranges_.end(),
                       [this](Range range) { return contains(range); });
}

bool IndexSet::intersects(Range range) const noexcept {
    if (range.count() <= 0)
        return false;
    const std::size_t place = rangeEndingAfter(range.lower);
    return place < ranges_.size() && ranges_[place].lower < range.upper;
}

bool IndexSet::intersects(const IndexSet& other) const noexcept {
    const IndexSet& fewer = ranges_.size() <= other.ranges_.size() ? *this : other;
    const IndexSet& more = &fewer == this ? other : *this;
    return std::any_of(fewer.ranges_.begin(), fewer.ranges_.end(),
                       [&more](Range range) { return more.intersects(range); });
}

std::int64_t IndexSet::count(Range range) const noexcept {
    std::int64_t found = 0;
    for (std::size_t i = rangeEndingAfter(range.lower);
         i < ranges_.size() && ranges_[i].lower < range.upper; ++i)
        found += std::min(ranges_[i].upper, range.upper) - std::max(ranges_[i].lower, range.lower);
    return found;
}

std::optional<std::int64_t> IndexSet::integerGreaterThan(std::int64_t index) const noexcept {
    if (index >= maximumIndex)
        return std::nullopt;
    return integerGreaterThanOrEqualTo(index + 1);
}

std::optional<std::int64_t>
IndexSet::integerGreaterThanOrEqualTo(std::int64_t index) const noexcept {
    const std::size_t place = rangeEndingAfter(index);
    if (place == ranges_.size())
        return std::nullopt;
    return std::max(index, ranges_[place].lower);
}

std::optional<std::int64_t> IndexSet::integerLessThan(std::int64_t index) const noexcept {
    if (index <= 0)
        return std::nullopt;
    return integerLessThanOrEqualTo(index - 1);
}

std::optional<std::int64_t> IndexSet::integerLessThanOrEqualTo(std::int64_t index) const noexcept {
    const std::size_t place = rangeEndingAfter(index);
    if (place < ranges_.size() && ranges_[place].lower <= index)
        return index;
    return place == 0 ? std::nullopt : std::optional(ranges_[place - 1].upper - 1);
}

void IndexSet::insert(std::int64_t index) { insert(single(index)); }

void IndexSet::insert(Range range) {
    if (checked(range).count() == 0)
        return;
    if (isEmpty() || range.lower > ranges_.back().upper) {
        ranges_.push_back(range);
        count_ += range.count();
        return;
    }
    // Every range that overlaps or touches the new one melts into it.
    const std::size_t first = rangeEndingAfter(range.lower - 1);
    std::size_t end = first;
    for (; end < ranges_.size() && ranges_[end].lower <= range.upper; ++end) {
        range.lower = std::min(range.lower, ranges_[end].lower);
        range.upper = std::max(range.upper, ranges_[end].upper);
        count_ -= ranges_[end].count();
    }
    count_ += range.count();
    const auto place = ranges_.begin() + static_cast<std::ptrdiff_t>(first);
    if (end == first) {
        ranges_.insert(place, range);
        return;
    }
    *place = range;
    ranges_.erase(place + 1, ranges_.begin() + static_cast<std::ptrdiff_t>(end));
}

void IndexSet::remove(std::int64_t index) {
    if (index >= 0 && index <= maximumIndex)
        remove(Range{index, index + 1});
}

void IndexSet::remove(Range range) {
    if (!intersects(range))
        return;
    const std::size_t first = rangeEndingAfter(range.lower);
    std::size_t end = first;
    for (; end < ranges_.size() && ranges_[end].lower < range.upper; ++end)
        count_ -= ranges_[end].count();

    Range kept[2];
    std::ptrdiff_t keptCount = 0;
    if (ranges_[first].lower < range.lower)
        kept[keptCount++] = {ranges_[first].lower, range.lower};
    if (ranges_[end - 1].upper > range.upper)
        kept[keptCount++] = {range.upper, ranges_[end - 1].upper};
    for (std::ptrdiff_t i = 0; i < keptCount; ++i)
        count_ += kept[i].count();

    const auto place = ranges_.begin() + static_cast<std::ptrdiff_t>(first);
    const auto replaced = static_cast<std::ptrdiff_t>(end - first);
    const std::ptrdiff_t overwritten = std::min(replaced, keptCount);
    std::copy_n(kept, overwritten, place);
    ranges_.insert(ranges_.erase(place + overwritten, place + replaced), kept + overwritten,
                   kept + keptCount);
}

void IndexSet::removeAll() noexcept {
    ranges_.clear();
    count_ = 0;
}

IndexSet IndexSet::union_(const IndexSet& other) const {
    if (isEmpty() || other.isEmpty())
        return isEmpty() ? other : *this;
    const Scratch scratch(ranges_.size() + other.ranges_.size());
    return IndexSet(scratch.upTo(unite(ranges_, other.ranges_, scratch.ranges.get())));
}

IndexSet IndexSet::intersection(const IndexSet& other) const {
    const std::vector<Range>& ranges = other.ranges_;
    // One more than can be kept: each step writes first and decides afterwards.
    const Scratch scratch(ranges_.size() + ranges.size() + 1);
    const auto at = [&ranges](std::size_t i) { return ranges[i]; };
    return IndexSet(scratch.upTo(intersect(ranges_, ranges.size(), at, scratch.ranges.get())));
}

IndexSet IndexSet::subtracting(const IndexSet& other) const {
    const std::vector<Range>& ranges = other.ranges_;
    const Scratch scratch(ranges_.size() + ranges.size() + 2);
    const auto gapAt = [&ranges](std::size_t i) {
        return Range{i == 0 ? 0 : ranges[i - 1].upper,
                     i == ranges.size() ? endOfPositions : ranges[i].lower};
    };
    return IndexSet(
        scratch.upTo(intersect(ranges_, ranges.size() + 1, gapAt, scratch.ranges.get())));
}

IndexSet IndexSet::symmetricDifference(const IndexSet& other) const {
    return union_(other).subtracting(intersection(other));
}

void IndexSet::shift(std::int64_t index, std::int64_t delta) {
    if (index < 0)
        fatalError("An index set holds no negative positions.");
    if (delta == 0 || isEmpty() || ranges_.back().upper <= index)
        return;
    if (delta > 0 && ranges_.back().upper > endOfPositions - delta)
        fatalError("A position of an index set is too large.");
    if (delta < 0) {
        const std::int64_t removed = delta < -index ? index : -delta;
        remove(Range{index - removed, index});
        // Those that would fall below 0 go too.
        if (delta < -index)
            remove(Range{index, delta == std::numeric_limits<std::int64_t>::min() ? endOfPositions
                                                                                  : -delta});
    }

    IndexSet moved;
    moved.ranges_.reserve(ranges_.size() + 1);
    for (const Range range : ranges_) {
        if (range.lower < index)
            moved.insert(Range{range.lower, std::min(range.upper, index)});
        if (range.upper > index)
            moved.insert(Range{std::max(range.lower, index) + delta, range.upper + delta});
    }
    *this = std::move(moved);
}

IndexSet IndexSet::afterRemoving(const IndexSet& removed) const {
    IndexSet moved;
    std::int64_t gone = 0;
    std::size_t next = 0;
    for (const Range range : subtracting(removed).ranges_) {
        for (; next < removed.ranges_.size() && removed.ranges_[next].lower < range.lower; ++next)
            gone += removed.ranges_[next].count();
        moved.insert(Range{range.lower - gone, range.upper - gone});
    }
    return moved;
}

IndexSet IndexSet::afterInserting(const IndexSet& inserted) const {
    if (!isEmpty() && ranges_.back().upper > endOfPositions - inserted.count_)
        fatalError("A position of an index set is too large.");
    IndexSet moved;
    std::int64_t come = 0;
    auto next = inserted.ranges_.begin();
    for (Range rest : ranges_) {
        while (rest.count() > 0) {
            for (; next != inserted.ranges_.end() && next->lower <= rest.lower + come; ++next)
                come += next->count();
            // Up to where the next ones push it apart.
            const std::int64_t upper = next == inserted.ranges_.end()
                                           ? rest.upper
                                           : std::min(rest.upper, next->lower - come);
            moved.insert(Range{rest.lower + come, upper + come});
            rest.lower = upper;
        }
    }
    return moved;
}

IndexSet IndexSet::afterMoving(const IndexSet& from, std::int64_t to) const {
    if (from.isEmpty())
        return *this;
    const std::int64_t landing = to - from.count(Range{0, to});
    IndexSet staying = afterRemoving(from);
    staying.shift(landing, from.count());
    // The rank of a moved member within `from` is its place once all others have gone.
    const IndexSet others = IndexSet(Range{0, *from.last() + 1}).subtracting(from);
    IndexSet moving = intersection(from).afterRemoving(others);
    moving.shift(0, landing);
    return staying.union_(moving);
}

IndexSet IndexSet::afterReversing(std::int64_t count) const {
    IndexSet reversed;
    for (auto range = ranges_.rbegin(); range != ranges_.rend(); ++range)
        reversed.insert(Range{count - range->upper, count - range->lower});
    return reversed;
}

std::optional<std::int64_t> IndexSet::singleIndex() const noexcept {
    return isSingle() ? first() : std::nullopt;
}

void IndexSet::toggle(std::int64_t index) {
    if (contains(index))
        remove(index);
    else
        insert(index);
}

IndexSet IndexSet::toggling(std::int64_t index) const {
    IndexSet copy(*this);
    copy.toggle(index);
    return copy;
}

IndexSet IndexSet::inserting(std::int64_t index) const {
    IndexSet copy(*this);
    copy.insert(index);
    return copy;
}

IndexSet IndexSet::removing(std::int64_t index) const {
    IndexSet copy(*this);
    copy.remove(index);
    return copy;
}

std::string IndexSet::description() const {
    std::string text = "{";
    for (const Range range : ranges_) {
        if (text.size() > 1)
            text += ", ";
        text += std::to_string(range.lower);
        if (range.count() > 1)
            text += "..." + std::to_string(range.upper - 1);
    }
    return text + "}";
}

std::set<IndexPath> IndexSet::mapToIndexPaths(std::int64_t section) const {
    std::set<IndexPath> paths;
    for (const std::int64_t index : *this)
        paths.insert(paths.end(), {index, section});
    return paths;
}

} // namespace zorvan

std::size_t std::hash<zorvan::IndexSet>::operator()(const zorvan::IndexSet& set) const noexcept {
    std::size_t hash = 0;
    for (const zorvan::IndexSet::Range range : set.ranges()) {
        hash = (hash ^ static_cast<std::size_t>(range.lower)) * 0x9E3779B97F4A7C15u;
        hash = (hash ^ static_cast<std::size_t>(range.upper)) * 0x9E3779B97F4A7C15u;
        hash ^= hash >> 29;
    }
    return hash;
}
