#pragma once

#include <zorvan/hosts/rows/ManagedListRows.h>
#include <zorvan/hosts/rows/SelectableArrayRows.h>

#include <memory>

namespace zorvan::detail {

template <class Item>
std::unique_ptr<ItemList<Item>> rowsOf(const std::shared_ptr<ManagedList<Item>>& list,
                                       RowFollower& follower) {
    if (!list)
        fatalError("There is no list to show.");
    return std::make_unique<ManagedListRows<Item>>(list, follower);
}
template <class Item>
std::unique_ptr<ItemList<Item>> rowsOf(const std::shared_ptr<SelectableArray<Item>>& array,
                                       RowFollower& follower) {
    if (!array)
        fatalError("There is no list to show.");
    return std::make_unique<SelectableArrayRows<Item>>(array, follower);
}

} // namespace zorvan::detail
