#pragma once

#include <zorvan/collections/Dictionary.h>
#include <zorvan/text/String.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <numeric>
#include <ranges>
#include <string>
#include <utility>
#include <vector>

/// Sorting by the order in which people read names; see `finderCompare`. Equal names keep their order.
namespace zorvan {

/// The elements sorted by the name that `block` gives for each; it is called once for each.
template <std::ranges::input_range Range, class Block>
auto finderSorted(Range&& range, Block block)
    requires(!Dictionary<std::remove_cvref_t<Range>>)
{
    using Element = std::ranges::range_value_t<Range>;
    std::vector<std::pair<std::string, Element>> named;
    for (auto&& element : range)
        named.emplace_back(std::string(std::invoke(block, element)), element);
    std::vector<std::size_t> order(named.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&named](std::size_t a, std::size_t b) {
        return finderCompare(named[a].first, named[b].first) == ComparisonResult::orderedAscending;
    });
    std::vector<Element> sorted;
    sorted.reserve(order.size());
    for (const std::size_t place : order)
        sorted.push_back(std::move(named[place].second));
    return sorted;
}

/// The texts in that order.
template <std::ranges::input_range Range>
std::vector<std::string> finderSorted(Range&& range) {
    std::vector<std::string> sorted(std::ranges::begin(range), std::ranges::end(range));
    std::stable_sort(sorted.begin(), sorted.end(), [](const std::string& a, const std::string& b) {
        return finderCompare(a, b) == ComparisonResult::orderedAscending;
    });
    return sorted;
}

/// The values of a dictionary, sorted by the name that `block` gives for each.
template <Dictionary Source, class Block>
auto finderSorted(const Source& dictionary, Block block) {
    std::vector<typename Source::mapped_type> values;
    for (const auto& [key, value] : dictionary)
        values.push_back(value);
    return finderSorted(values, std::move(block));
}

/// Sorts the list itself.
template <class Element, class Block>
void finderSort(std::vector<Element>& list, Block block) {
    list = finderSorted(list, std::move(block));
}
inline void finderSort(std::vector<std::string>& list) { list = finderSorted(list); }

} // namespace zorvan
