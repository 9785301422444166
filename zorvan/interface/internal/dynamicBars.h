#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

// What dynamic toolbars and touch bars do alike. Whatever they call may change what is walked, so
// that lists are taken by value and callables copied before they are called.
namespace zorvan::internal {

/// The first set whose predicate is true; null when there is none.
template <class Set>
std::shared_ptr<Set> firstEnabled(std::vector<std::shared_ptr<Set>> sets) {
    const auto found = std::find_if(sets.begin(), sets.end(), [](const auto& set) {
        const typename Set::Predicate isEnabled = set->isEnabled();
        return isEnabled();
    });
    return found == sets.end() ? nullptr : *found;
}

template <class Item>
void updateAll(std::vector<std::shared_ptr<Item>> items) {
    for (const auto& item : items)
        if (const typename Item::Update update = item->update())
            update(*item);
}

/// The identifiers of the items to show, of a set that may be null.
template <class Set>
std::vector<std::string> shownIdentifiers(const std::shared_ptr<Set>& set) {
    std::vector<std::string> shown;
    if (set)
        for (const auto& item : set->items())
            if (!item->removedFromBar())
                shown.push_back(item->identifier());
    return shown;
}

/// What the set, which may be null, shows for an identifier; null when it has no such item.
template <class Shown, class Set>
std::shared_ptr<Shown> shownItem(const std::shared_ptr<Set>& set, const std::string& identifier) {
    if (set)
        for (const auto& item : set->items())
            if (item->identifier() == identifier)
                return item->item();
    return nullptr;
}

} // namespace zorvan::internal
