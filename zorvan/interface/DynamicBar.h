#pragma once

#include <zorvan/interface/DynamicBarItem.h>
#include <zorvan/interface/DynamicBarItemSet.h>
#include <zorvan/interface/ReloadGuard.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zorvan {

/// What dynamic toolbars and touch bars do alike: they keep sets of items, of which each reload
/// chooses one to show. `Shown` is what the bar takes, `Container` has the builders of items.
template <class Shown, class Container>
class DynamicBar : public Container {
public:
    /// One item of a set.
    using Item = DynamicBarItem<Shown>;
    /// Items that are shown together.
    using ItemSet = DynamicBarItemSet<Item, Container>;

    /// The set chosen by the last reload; null for none.
    const std::shared_ptr<ItemSet>& displayedItemSet() const noexcept { return displayedItemSet_; }
    /// The set whose items the bar is given when it asks. Nothing is shown anew, and the next
    /// reload chooses again.
    void setDisplayedItemSet(std::shared_ptr<ItemSet> set) { displayedItemSet_ = std::move(set); }
    /// The sets that a reload chooses from: the first that is enabled.
    /// @{
    const std::vector<std::shared_ptr<ItemSet>>& itemSets() const noexcept { return itemSets_; }
    void setItemSets(std::vector<std::shared_ptr<ItemSet>> sets) { itemSets_ = std::move(sets); }
    /// @}

    /// Appends a new set, which later items are added to. Always enabled without a predicate.
    std::shared_ptr<ItemSet> addItemSet(typename ItemSet::Predicate isEnabled = {}) {
        return itemSets_.emplace_back(ItemSet::create(std::move(isEnabled)));
    }

    using Container::addItem;
    /// Appends the item to the last set; without a set it is dropped.
    std::shared_ptr<Item> addItem(const std::shared_ptr<Item>& item) override {
        return itemSets_.empty() ? item : itemSets_.back()->addItem(item);
    }

protected:
    /// As `reloadDisplayedItems` of the bar says, which keeps the bar alive meanwhile.
    void reload() {
        reloads_.run([this] {
            const std::shared_ptr<ItemSet> chosen = chosenItemSet();
            if (chosen)
                updateAll(chosen->items());
            displayedItemSet_ = chosen;
            showItems(shownIdentifiers());
        });
    }
    /// The set to show, or null: the first that is enabled unless overridden.
    virtual std::shared_ptr<ItemSet> chosenItemSet() const { return firstEnabled(itemSets_); }
    /// Makes the bar show the items of these identifiers.
    virtual void showItems(std::vector<std::string> identifiers) = 0;
    /// What the displayed set shows for an identifier; null when it has no such item.
    std::shared_ptr<Shown> shownItem(const std::string& identifier) const {
        if (displayedItemSet_)
            for (const auto& item : displayedItemSet_->items())
                if (item->identifier() == identifier)
                    return item->item();
        return nullptr;
    }

private:
    // Whatever is called may change what is walked, so that lists are taken by value and callables
    // copied before they are called.

    static std::shared_ptr<ItemSet> firstEnabled(std::vector<std::shared_ptr<ItemSet>> sets) {
        const auto found = std::find_if(sets.begin(), sets.end(), [](const auto& set) {
            const typename ItemSet::Predicate isEnabled = set->isEnabled();
            return isEnabled();
        });
        return found == sets.end() ? nullptr : *found;
    }
    static void updateAll(std::vector<std::shared_ptr<Item>> items) {
        for (const auto& item : items)
            if (const typename Item::Update update = item->update())
                update(*item);
    }
    std::vector<std::string> shownIdentifiers() const {
        std::vector<std::string> shown;
        if (displayedItemSet_)
            for (const auto& item : displayedItemSet_->items())
                if (!item->removedFromBar())
                    shown.push_back(item->identifier());
        return shown;
    }

    std::shared_ptr<ItemSet> displayedItemSet_;
    std::vector<std::shared_ptr<ItemSet>> itemSets_;
    ReloadGuard reloads_;
};

} // namespace zorvan
