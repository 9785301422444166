#include <zorvan/collections/IndexSet.h>

#include <zorvan/collections/internal/RangeMerge.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>

namespace zorvan {

namespace {

using Range = IndexSet::Range;

constexpr std::int64_t endOfPositions = IndexSet::maximumIndex + 1;

/// Stops the program unless the position can be a member, or the end of a range of members.
void checkPosition(std::int64_t position, std::int64_t largest) {
    if (position < 0)
        fatalError("An index set holds no negative positions, such as " + std::to_string(position) +
                   ".");
    if (position > largest)
        fatalError("An index set holds no position above " + std::to_string(largest) +
                   ", such as " + std::to_string(position) + ".");
}

Range checked(Range range) {
    checkPosition(range.lower, endOfPositions);
    if (range.upper < range.lower)
        fatalError("A range of an index set ends at " + std::to_string(range.upper) +
                   ", before it begins at " + std::to_string(range.lower) + ".");
    return range;
}

Range single(std::int64_t index) {
    checkPosition(index, IndexSet::maximumIndex);
    return {index, index + 1};
}

Range located(std::int64_t location, std::int64_t length) {
    checkPosition(location, endOfPositions);
    if (length < 0 || location > endOfPositions - length)
        fatalError("A range of an index set has 0 to " + std::to_string(endOfPositions - location) +
                   " members from " + std::to_string(location) + " on, not " +
                   std::to_string(length) + ".");
    return {location, location + length};
}

} // namespace

/// Merges two ascending lists of ranges.
template <template <class> class Merge, class Second>
IndexSet::Ranges IndexSet::merge(std::span<const Range> a, Second b, Second bEnd) {
    if (a.empty())
        return {};
    const auto firstNot = [&](auto isBefore) {
        std::ptrdiff_t low = 0, high = bEnd - b;
        while (low < high) {
            const std::ptrdiff_t middle = low + (high - low) / 2;
            const bool goesOn = isBefore(*(b + middle));
            low = goesOn ? middle + 1 : low;
            high = goesOn ? high : middle;
        }
        return b + low;
    };
    // A step writes first and decides afterwards, and a range that reaches across is read twice.
    Ranges result(a.size() + static_cast<std::size_t>(bEnd - b) + 9);
    Range* room = result.data();
    const auto cut = [&](std::size_t third) {
        const std::size_t from = a.size() * third / 3, to = a.size() * (third + 1) / 3;
        const auto isBefore = [&](Range range) {
            return Merge<Second>::isBefore(range, a[from].lower);
        };
        const auto isInside = [&](Range range) { return range.lower < a[to].lower; };
        const Second bFrom = third == 0 ? b : firstNot(isBefore);
        // A gap of no positions may be before the stretch and not inside of what ends there.
        const Second inside = third == 2 ? bEnd : firstNot(isInside);
        const Second bTo = inside - bFrom < 0 ? bFrom : inside;
        const Merge<Second> stretch{{a.data() + from, a.data() + to, bFrom, bTo, room}};
        room += to - from + static_cast<std::size_t>(bTo - bFrom) + 2;
        return stretch;
    };
    const std::array<Merge<Second>, 3> thirds{cut(0), cut(1), cut(2)};
    const std::array<Range*, 3> ends = internal::mergeTogether(thirds[0], thirds[1], thirds[2]);
    Range* end = result.data();
    for (std::size_t i = 0; i < thirds.size(); ++i)
        end = internal::join(result.data(), end, {thirds[i].out + Merge<Second>::unused, ends[i]});
    result.resize(static_cast<std::size_t>(end - result.data()));
    if (result.size() < result.capacity() / 2)
        result.shrink_to_fit();
    return result;
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

IndexSet::IndexSet(Ranges ranges) : ranges_(std::move(ranges)) {
    count_ = std::transform_reduce(ranges_.begin(), ranges_.end(), std::int64_t{0}, std::plus{},
                                   [](Range range) { return range.count(); });
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
    if (range.upper <= range.lower)
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
    if (range.upper <= range.lower)
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
    std::int64_t melted = 0;
    for (; end < ranges_.size() && ranges_[end].lower <= range.upper; ++end) {
        range.lower = std::min(range.lower, ranges_[end].lower);
        range.upper = std::max(range.upper, ranges_[end].upper);
        melted += ranges_[end].count();
    }
    const auto place = ranges_.begin() + static_cast<std::ptrdiff_t>(first);
    if (end == first) {
        ranges_.insert(place, range);
    } else {
        *place = range;
        ranges_.erase(place + 1, ranges_.begin() + static_cast<std::ptrdiff_t>(end));
    }
    count_ += range.count() - melted;
}

void IndexSet::remove(std::int64_t index) {
    if (index >= 0 && index <= maximumIndex)
        remove(Range{index, index + 1});
}

void IndexSet::remove(Range range) {
    if (!intersects(range))
        return;
    const std::int64_t lost = count(range);
    auto place = ranges_.begin() + static_cast<std::ptrdiff_t>(rangeEndingAfter(range.lower));
    if (place->lower < range.lower) {
        // One range becomes two, which alone needs memory: it comes before anything is changed.
        if (range.upper < place->upper)
            place = ranges_.insert(place + 1, {range.upper, place->upper}) - 1;
        (place++)->upper = range.lower;
    }
    auto end = place;
    while (end != ranges_.end() && end->upper <= range.upper)
        ++end;
    if (end != ranges_.end())
        end->lower = std::max(end->lower, range.upper);
    ranges_.erase(place, end);
    count_ -= lost;
}

void IndexSet::removeAll() noexcept {
    ranges_.clear();
    count_ = 0;
}

IndexSet IndexSet::union_(const IndexSet& other) const {
    if (isEmpty() || other.isEmpty())
        return isEmpty() ? other : *this;
    const Range* const b = other.ranges_.data();
    return IndexSet(merge<internal::Union>(ranges_, b, b + other.ranges_.size()));
}

IndexSet IndexSet::intersection(const IndexSet& other) const {
    const Range* const b = other.ranges_.data();
    return IndexSet(merge<internal::Intersection>(ranges_, b, b + other.ranges_.size()));
}

IndexSet IndexSet::subtracting(const IndexSet& other) const {
    const internal::Gaps gaps(other.ranges_, 0);
    return IndexSet(
        merge<internal::Intersection>(ranges_, gaps, gaps + (std::ssize(other.ranges_) + 1)));
}

IndexSet IndexSet::symmetricDifference(const IndexSet& other) const {
    return union_(other).subtracting(intersection(other));
}

void IndexSet::shift(std::int64_t index, std::int64_t delta) {
    checkPosition(index, endOfPositions);
    if (delta < 0) {
        const std::int64_t back = delta < -endOfPositions ? endOfPositions : -delta;
        *this =
            afterRemoving(IndexSet(Range{index - std::min(index, back), std::max(index, back)}));
    } else if (!isEmpty() && ranges_.back().upper > index) {
        checkPosition(*last(), maximumIndex - delta);
        *this = afterInserting(IndexSet(Range{index, index + delta}));
    }
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

IndexSet IndexSet::afterPermuting(std::span<const std::int64_t> oldPositions) const {
    IndexSet permuted;
    for (std::size_t i = 0; i < oldPositions.size(); ++i)
        if (contains(oldPositions[i]))
            permuted.insert(static_cast<std::int64_t>(i));
    return permuted;
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
    std::size_t mixed = 0;
    for (const zorvan::IndexSet::Range range : set.ranges()) {
        mixed = (mixed ^ static_cast<std::size_t>(range.lower)) * 0x9E3779B97F4A7C15u;
        mixed = (mixed ^ static_cast<std::size_t>(range.upper)) * 0x9E3779B97F4A7C15u;
        mixed ^= mixed >> 29;
    }
    return mixed;
}
