#pragma once

#include <zorvan/collections/Dictionary.h>
#include <zorvan/platform/textservices/Collation.h>

#include <cstddef>
#include <functional>
#include <ranges>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Sorting by the order in which people read names; see `finderCompare`. Equal names keep their
/// order.
namespace zorvan {

/// The elements sorted by the name that `block` gives for each; it is called once for each.
template <std::ranges::input_range Range, class Block>
auto finderSorted(Range&& range, Block block) requires(!Dictionary<std::remove_cvref_t<Range>>) {
    using Element = std::ranges::range_value_t<Range>;
    std::vector<Element> elements;
    std::vector<std::string> names;
    for (auto&& element : range) {
        names.emplace_back(std::invoke(block, element));
        elements.push_back(element);
    }
    const std::vector<std::string_view> views(names.begin(), names.end());
    std::vector<Element> sorted;
    sorted.reserve(elements.size());
    for (const std::size_t place : orderOfNames(views))
        sorted.push_back(std::move(elements[place]));
    return sorted;
}

/// The texts in that order.
template <std::ranges::input_range Range>
std::vector<std::string> finderSorted(Range&& range) {
    std::vector<std::string> texts; // not of the ends, which may be of two types
    for (auto&& text : range)
        texts.emplace_back(text);
    const std::vector<std::string_view> views(texts.begin(), texts.end());
    std::vector<std::string> sorted;
    sorted.reserve(texts.size());
    for (const std::size_t place : orderOfNames(views))
        sorted.push_back(std::move(texts[place]));
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
/// @{
template <class Element, class Block>
void finderSort(std::vector<Element>& list, Block block) {
    list = finderSorted(list, std::move(block));
}
inline void finderSort(std::vector<std::string>& list) { list = finderSorted(list); }
/// @}

} // namespace zorvan
