#pragma once

#include <zorvan/platform/dispatch/concurrentPerform.h>

#include <concepts>
#include <cstdint>
#include <functional>
#include <optional>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

/// Maps over lists on every core. The transform is called once for each element, from several
/// threads at once, so it must be safe to call concurrently; the caller waits until all calls have
/// ended. When one throws, the first exception reaches the caller, and elements not yet begun may
/// be left out.
namespace zorvan {

namespace detail {

template <class Element, class Transform>
using ParallelResult = std::decay_t<std::invoke_result_t<Transform&, const Element&>>;

/// Values that may lie in the result before they are known. Truth values share their bytes there,
/// so that two threads could not write them.
template <class Value>
concept IsFilledInPlace = std::is_trivially_copyable_v<Value> && std::is_move_assignable_v<Value> &&
    std::is_default_constructible_v<Value> && !std::same_as<Value, bool>;

} // namespace detail

/// Calls the body for each element.
template <class Element, class Body>
void parallelEach(const std::vector<Element>& list, Body body) {
    concurrentPerform(static_cast<std::int64_t>(list.size()), [&list, &body](std::int64_t i) {
        std::invoke(body, list[static_cast<std::size_t>(i)]);
    });
}

/// The transformed elements, in order.
template <class Element, class Transform>
auto parallelMap(const std::vector<Element>& list, Transform transform) {
    using Value = detail::ParallelResult<Element, Transform>;
    const auto count = static_cast<std::int64_t>(list.size());
    // Each call writes a place of its own, so the places need no lock.
    if constexpr (detail::IsFilledInPlace<Value>) {
        std::vector<Value> results(list.size());
        concurrentPerform(count, [&, places = results.data()](std::int64_t i) {
            places[i] = std::invoke(transform, list[static_cast<std::size_t>(i)]);
        });
        return results;
    } else {
        std::vector<std::optional<Value>> places(list.size());
        concurrentPerform(count, [&](std::int64_t i) {
            const auto at = static_cast<std::size_t>(i);
            places[at].emplace(std::invoke(transform, list[at]));
        });
        std::vector<Value> results;
        results.reserve(list.size());
        for (std::optional<Value>& place : places)
            results.push_back(*std::move(place));
        return results;
    }
}

/// The present ones among the transformed elements, in order.
template <class Element, class Transform>
auto parallelCompactMap(const std::vector<Element>& list, Transform transform) {
    using Value = typename detail::ParallelResult<Element, Transform>::value_type;
    std::vector<Value> results;
    for (auto&& value : parallelMap(list, std::move(transform)))
        if (value)
            results.push_back(*std::move(value));
    return results;
}

/// The set of the transformed elements.
template <class Element, class Transform>
auto parallelMapToSet(const std::vector<Element>& list, Transform transform) {
    std::unordered_set<detail::ParallelResult<Element, Transform>> set;
    for (auto&& value : parallelMap(list, std::move(transform)))
        set.insert(std::move(value));
    return set;
}

} // namespace zorvan
