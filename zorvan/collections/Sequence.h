#pragma once

#include <zorvan/collections/IndexSet.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <ranges>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

/// Operations on any range that can be walked once. What a transform or predicate throws reaches
/// the caller. A "compact" form takes a transform that gives an optional, and drops what is absent.
namespace zorvan {

namespace detail {

template <class Range, class Transform>
using Transformed =
    std::decay_t<std::invoke_result_t<Transform&, std::ranges::range_reference_t<Range>>>;

template <class Range, class Transform>
using TransformedPresent = typename Transformed<Range, Transform>::value_type;

} // namespace detail

/// What the transform gives, equal results once.
template <std::ranges::input_range Range, class Transform>
auto mapToSet(Range&& range, Transform transform) {
    std::unordered_set<detail::Transformed<Range, Transform>> result;
    for (auto&& element : range)
        result.insert(std::invoke(transform, element));
    return result;
}

/// What the transform gives but for absent results, equal ones once.
template <std::ranges::input_range Range, class Transform>
auto compactMapToSet(Range&& range, Transform transform) {
    std::unordered_set<detail::TransformedPresent<Range, Transform>> result;
    for (auto&& element : range)
        if (auto value = std::invoke(transform, element))
            result.insert(*std::move(value));
    return result;
}

/// A dictionary of the pairs that the transform gives; of a key given twice, the later pair stays.
template <std::ranges::input_range Range, class Transform>
auto mapEntries(Range&& range, Transform transform) {
    using Pair = detail::Transformed<Range, Transform>;
    std::unordered_map<std::decay_t<typename Pair::first_type>, typename Pair::second_type> result;
    for (auto&& element : range) {
        auto [key, value] = std::invoke(transform, element);
        result.insert_or_assign(std::move(key), std::move(value));
    }
    return result;
}

/// As `mapEntries`; an absent pair is left out.
template <std::ranges::input_range Range, class Transform>
auto compactMapEntries(Range&& range, Transform transform) {
    using Pair = detail::TransformedPresent<Range, Transform>;
    std::unordered_map<std::decay_t<typename Pair::first_type>, typename Pair::second_type> result;
    for (auto&& element : range)
        if (auto pair = std::invoke(transform, element))
            result.insert_or_assign(std::move(pair->first), std::move(pair->second));
    return result;
}

/// The set of the positions that the transform gives, in any order.
template <std::ranges::input_range Range, class Transform>
IndexSet mapIndexSet(Range&& range, Transform transform) {
    std::vector<std::int64_t> members;
    for (auto&& element : range)
        members.push_back(std::invoke(transform, element));
    return IndexSet::of(members);
}

/// As `mapIndexSet`; an absent position is left out.
template <std::ranges::input_range Range, class Transform>
IndexSet compactMapIndexSet(Range&& range, Transform transform) {
    std::vector<std::int64_t> members;
    for (auto&& element : range)
        if (const std::optional<std::int64_t> member = std::invoke(transform, element))
            members.push_back(*member);
    return IndexSet::of(members);
}

/// The positions, counted from 0, of the elements that satisfy the predicate.
template <std::ranges::input_range Range, class Predicate>
IndexSet indexes(Range&& range, Predicate where) {
    IndexSet found;
    std::int64_t position = 0;
    for (auto&& element : range) {
        if (std::invoke(where, element))
            found.insert(position);
        ++position;
    }
    return found;
}

/// The first present result of the transform, which is asked no further; absent when there is none.
template <std::ranges::input_range Range, class Transform>
detail::Transformed<Range, Transform> compactFirst(Range&& range, Transform transform) {
    for (auto&& element : range)
        if (auto result = std::invoke(transform, element))
            return result;
    return {};
}

/// The collection itself, or absent when it is empty.
template <class Collection>
std::optional<Collection> nonEmptyOrNil(Collection collection) {
    if (std::ranges::empty(collection))
        return std::nullopt;
    return collection;
}

} // namespace zorvan
