#pragma once

#include <zorvan/collections/IndexSet.h>
#include <zorvan/numbers-geometry/RealNumber.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// Operations on `std::vector`, receiver first. Positions are counted from 0. Where an operation
/// takes an `IndexSet`, a member that is no position of the list stops the program. Call `move` and
/// `remove` with their namespace (`zorvan::move`), as the standard library has functions of those
/// names that a call with a vector finds too.
namespace zorvan {

namespace detail {

template <class Element>
constexpr std::int64_t countOf(const std::vector<Element>& list) noexcept {
    return static_cast<std::int64_t>(list.size());
}

/// A list of truth values holds no elements of its own to point at.
template <class Element>
const Element* addressAt(const std::vector<Element>& list, std::int64_t at) {
    if constexpr (std::same_as<Element, bool>) {
        static constexpr bool values[] = {false, true};
        return &values[list[static_cast<std::size_t>(at)]];
    } else {
        return &list[static_cast<std::size_t>(at)];
    }
}

/// They stop the program unless the positions are those of elements of a list of `count`, or places
/// before or after one.
void checkPositions(std::int64_t count, const IndexSet& indexes);
void checkInsertion(std::int64_t count, std::int64_t at);

/// Whether elements change places without an exception. Then a change of a list that needs no
/// memory, or has made room before, is whole.
template <class Element>
inline constexpr bool movesSafely =
    std::is_nothrow_move_constructible_v<Element>&& std::is_nothrow_move_assignable_v<Element>;

/// Room for so many more elements of a list, made before they are inserted: that does not throw
/// then, as far as elements change places safely. It costs what an insertion costs.
template <class Element>
class Room {
public:
    Room(const std::vector<Element>& list, std::size_t count) {
        if (movesSafely<Element> && list.capacity() - list.size() < count)
            larger_.reserve(list.size() + std::max(list.size(), count));
    }

    /// Inserts elements before the one at `at`, taking them out of `added`.
    void insert(std::vector<Element>& list, std::int64_t at, std::vector<Element>& added) {
        const auto place = list.begin() + at;
        if (larger_.capacity() == 0)
            return take(list, place, added.begin(), added.end());
        take(larger_, larger_.end(), list.begin(), place);
        take(larger_, larger_.end(), added.begin(), added.end());
        take(larger_, larger_.end(), place, list.end());
        list.swap(larger_);
    }

private:
    template <class Iterator>
    static void take(std::vector<Element>& list, Iterator at, Iterator from, Iterator to) {
        list.insert(at, std::make_move_iterator(from), std::make_move_iterator(to));
    }

    std::vector<Element> larger_; // unused where the list has room
};

/// As `zorvan::move`, through an empty buffer, which needs no memory when it has room for what
/// moves.
template <class Element>
std::int64_t move(std::vector<Element>& list, const IndexSet& from, std::int64_t to,
                  std::vector<Element>& buffer) {
    checkPositions(countOf(list), from);
    checkInsertion(countOf(list), to);
    const std::int64_t below = from.count(IndexSet::Range{0, to});
    const std::int64_t landing = to - below;
    if (from.isEmpty())
        return landing;

    buffer.reserve(static_cast<std::size_t>(from.count()));
    // Elements that stay close up towards `to` from both sides, which opens the gap at `landing`.
    const auto ranges = from.ranges();
    auto kept = list.begin() + std::min(*from.first(), to);
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        for (std::int64_t p = ranges[i].lower; p < ranges[i].upper; ++p)
            buffer.push_back(std::move(list[static_cast<std::size_t>(p)]));
        const std::int64_t next = i + 1 < ranges.size() ? std::min(ranges[i + 1].lower, to) : to;
        for (std::int64_t p = ranges[i].upper; p < next; ++p)
            *kept++ = std::move(list[static_cast<std::size_t>(p)]);
    }
    auto keptBack = list.begin() + std::max(*from.last() + 1, to);
    for (std::size_t i = ranges.size(); i > 0 && ranges[i - 1].upper > to; --i) {
        const std::int64_t previous = i > 1 ? std::max(ranges[i - 2].upper, to) : to;
        if (ranges[i - 1].lower > previous)
            keptBack = std::move_backward(list.begin() + previous,
                                          list.begin() + ranges[i - 1].lower, keptBack);
    }
    std::move(buffer.begin(), buffer.end(), list.begin() + landing);
    return landing;
}

} // namespace detail

/// The element, or absent when there is none at that position.
template <class Element>
std::optional<Element> safe(const std::vector<Element>& list, std::int64_t at) {
    if (at < 0 || at >= detail::countOf(list))
        return std::nullopt;
    return list[static_cast<std::size_t>(at)];
}

/// The elements at the positions, in ascending position order.
template <class Element>
std::vector<Element> at(const std::vector<Element>& list, const IndexSet& indexes) {
    detail::checkPositions(detail::countOf(list), indexes);
    std::vector<Element> result;
    result.reserve(static_cast<std::size_t>(indexes.count()));
    for (const IndexSet::Range range : indexes.ranges())
        result.insert(result.end(), list.begin() + range.lower, list.begin() + range.upper);
    return result;
}

/// Removes the elements at the positions, in one pass over the list.
template <class Element>
void remove(std::vector<Element>& list, const IndexSet& indexes) {
    detail::checkPositions(detail::countOf(list), indexes);
    if (indexes.isEmpty())
        return;
    auto kept = list.begin() + *indexes.first();
    const auto ranges = indexes.ranges();
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const auto next = i + 1 < ranges.size() ? list.begin() + ranges[i + 1].lower : list.end();
        kept = std::move(list.begin() + ranges[i].upper, next, kept);
    }
    list.erase(kept, list.end());
}

/// Moves the elements at `from`, in their order, before the element that stands at `to`, or to the
/// end when `to` is the count; both count positions before the move. Returns the position at which
/// the moved elements now begin. One pass over what lies between.
/// A `to` outside 0 ... count stops the program.
template <class Element>
std::int64_t move(std::vector<Element>& list, const IndexSet& from, std::int64_t to) {
    std::vector<Element> buffer;
    return detail::move(list, from, to, buffer);
}

/// Swaps the element with the one before it; false when there is no such pair.
template <class Element>
bool moveUp(std::vector<Element>& list, std::int64_t at) {
    if (at < 1 || at >= detail::countOf(list))
        return false;
    std::iter_swap(list.begin() + at, list.begin() + (at - 1));
    return true;
}

/// Swaps the element with the one after it; false when there is no such pair.
template <class Element>
bool moveDown(std::vector<Element>& list, std::int64_t at) {
    return at >= 0 && at < detail::countOf(list) && moveUp(list, at + 1);
}

/// Removes and returns the first element; absent when the list is empty.
template <class Element>
std::optional<Element> popFirst(std::vector<Element>& list) {
    if (list.empty())
        return std::nullopt;
    std::optional<Element> first(std::move(list.front()));
    list.erase(list.begin());
    return first;
}

/// Removes the first `count` elements, or all when there are fewer. A negative count removes
/// nothing.
template <class Element>
void removeFirst(std::vector<Element>& list, std::int64_t count) {
    list.erase(list.begin(),
               list.begin() + std::clamp<std::int64_t>(count, 0, detail::countOf(list)));
}

/// A copy without the first `count` elements; see `removeFirst`.
template <class Element>
[[nodiscard]] std::vector<Element> removingFirst(std::vector<Element> list, std::int64_t count) {
    removeFirst(list, count);
    return list;
}

/// Keeps the last `count` elements, or all when there are fewer. A negative count keeps none.
template <class Element>
void keepLast(std::vector<Element>& list, std::int64_t count) {
    removeFirst(list, detail::countOf(list) - std::max<std::int64_t>(count, 0));
}

/// A copy of the last `count` elements; see `keepLast`.
template <class Element>
[[nodiscard]] std::vector<Element> keepingLast(std::vector<Element> list, std::int64_t count) {
    keepLast(list, count);
    return list;
}

/// Removes and returns the *last* element that satisfies the predicate; absent when none does.
template <class Element, std::predicate<const Element&> Predicate>
requires(!std::convertible_to<Predicate, std::int64_t>) std::optional<Element> removeFirst(
    std::vector<Element>& list, Predicate where) {
    const auto found = std::find_if(list.rbegin(), list.rend(), where);
    if (found == list.rend())
        return std::nullopt;
    std::optional<Element> removed(std::move(*found));
    list.erase(std::next(found).base());
    return removed;
}

/// Consecutive pieces of `size` elements, the last one shorter when need be; none for an empty
/// list. A size below 1 stops the program.
template <class Element>
std::vector<std::vector<Element>> chunked(const std::vector<Element>& list, std::int64_t into) {
    if (into < 1)
        fatalError("A list is cut into pieces of at least 1 element, not of " +
                   std::to_string(into) + ".");
    std::vector<std::vector<Element>> pieces;
    pieces.reserve(list.size() / static_cast<std::size_t>(into) + 1);
    for (auto from = list.begin(); from != list.end();) {
        const auto to = from + std::min<std::int64_t>(into, list.end() - from);
        pieces.emplace_back(from, to);
        from = to;
    }
    return pieces;
}

/// The first half and the rest; of an odd number of elements the rest has one more.
template <class Element>
struct Halves {
    /// In the order of the list.
    /// @{
    std::vector<Element> first;
    std::vector<Element> second;
    /// @}
};

/// The list cut in the middle.
template <class Element>
Halves<Element> split(const std::vector<Element>& list) {
    const auto middle = list.begin() + static_cast<std::ptrdiff_t>(list.size() / 2);
    return {{list.begin(), middle}, {middle, list.end()}};
}

/// The lists one after the other.
template <class Element>
std::vector<Element> flat(const std::vector<std::vector<Element>>& lists) {
    std::size_t count = 0;
    for (const auto& list : lists)
        count += list.size();
    std::vector<Element> result;
    result.reserve(count);
    for (const auto& list : lists)
        result.insert(result.end(), list.begin(), list.end());
    return result;
}

/// The present ones among the arguments, in order. The element type is that of the first argument,
/// or the one given: `compacted<int>(1, std::nullopt)`.
template <class Element, std::convertible_to<std::optional<Element>>... Others>
std::vector<Element> compacted(std::optional<Element> first, Others... others) {
    std::vector<Element> result;
    const auto add = [&result](std::optional<Element>&& element) {
        if (element)
            result.push_back(*std::move(element));
    };
    add(std::move(first));
    (add(std::move(others)), ...);
    return result;
}
/// Of no argument, nothing.
template <class Element>
std::vector<Element> compacted() {
    return {};
}

/// Draws up to `drawCount` elements, no position twice, in the order drawn.
///
/// Each draw picks one of a hundred evenly spaced positions; a position drawn before uses up the
/// draw and adds nothing. So the result may be shorter than asked for, and of a list of more than a
/// hundred elements only every (count / 100)th can come.
template <class Element>
std::vector<Element> distinctSamples(const std::vector<Element>& list, std::int64_t drawCount) {
    const auto position = [&list](std::uint32_t hundredth) {
        const float share = static_cast<float>(hundredth) / 100;
        return static_cast<std::int64_t>(share * static_cast<float>(list.size()));
    };
    IndexSet reachable, drawn;
    for (std::uint32_t i = 0; i < 100 && !list.empty(); ++i)
        reachable.insert(position(i));
    std::vector<Element> result;
    // Once everything has been drawn that can be, further draws add nothing.
    for (std::int64_t draw = 0; draw < drawCount && drawn.count() < reachable.count(); ++draw) {
        const std::int64_t at = position(randomUInt32() % 100);
        if (drawn.contains(at))
            continue;
        drawn.insert(at);
        result.push_back(list[static_cast<std::size_t>(at)]);
    }
    return result;
}

} // namespace zorvan
