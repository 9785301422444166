#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace zorvan::detail {

/// For each position of the sorted list, where its item stands now. Equal items keep their order.
/// Positions are sorted, not items, so that an order that throws leaves every item in its place.
template <class Item, class Order>
std::vector<std::int64_t> sortedPositions(const std::vector<Item>& items, const Order& by) {
    std::vector<std::int64_t> positions(items.size());
    std::iota(positions.begin(), positions.end(), 0);
    std::stable_sort(
        positions.begin(), positions.end(), [&items, &by](std::int64_t a, std::int64_t b) {
            return by(items[static_cast<std::size_t>(a)], items[static_cast<std::size_t>(b)]);
        });
    return positions;
}

/// Brings the items to where the positions say, which are a permutation of theirs.
template <class Item>
void permute(std::vector<Item>& items, const std::vector<std::int64_t>& positions) {
    std::vector<Item> permuted;
    permuted.reserve(items.size());
    for (const std::int64_t position : positions)
        permuted.push_back(std::move(items[static_cast<std::size_t>(position)]));
    items = std::move(permuted);
}

} // namespace zorvan::detail
