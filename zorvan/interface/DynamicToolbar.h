#pragma once

#include <zorvan/interface/DynamicToolbarItemSet.h>
#include <zorvan/interface/NSToolbar.h>
#include <zorvan/interface/ReloadGuard.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zorvan {

/// A toolbar whose items change with the state of the application.
///
/// The application declares sets of items, each with a predicate, and calls `reloadDisplayedItems`
/// when the state has changed. The toolbar is edited only when the items it shows really change.
/// Main thread only.
class DynamicToolbar : public DynamicToolbarItemContainer,
                       public NSToolbarDelegate,
                       public std::enable_shared_from_this<DynamicToolbar> {
public:
    /// Gives a set to show, or null.
    using ItemSetProvider = std::function<std::shared_ptr<DynamicToolbarItemSet>()>;

    /// For `create`: of the toolbar.
    struct Identifier {
        /// Of the toolbar.
        std::string identifier;
    };
    /// A toolbar without items or sets, which no window shows yet.
    static std::shared_ptr<DynamicToolbar> create(Identifier toolbar);
    /// With a random identifier.
    static std::shared_ptr<DynamicToolbar> create();

    /// The toolbar, whose delegate this is.
    const std::shared_ptr<NSToolbar>& toolbar() const noexcept { return toolbar_; }
    /// The set chosen by the last reload; null for none.
    const std::shared_ptr<DynamicToolbarItemSet>& displayedItemSet() const noexcept {
        return displayedItemSet_;
    }
    /// The set whose items the toolbar is given when it asks. Nothing is shown anew, and the next
    /// reload chooses again.
    void setDisplayedItemSet(std::shared_ptr<DynamicToolbarItemSet> set) {
        displayedItemSet_ = std::move(set);
    }
    /// The sets that a reload chooses from: the first that is enabled.
    /// @{
    const std::vector<std::shared_ptr<DynamicToolbarItemSet>>& itemSets() const noexcept {
        return itemSets_;
    }
    void setItemSets(std::vector<std::shared_ptr<DynamicToolbarItemSet>> sets) {
        itemSets_ = std::move(sets);
    }
    /// @}
    /// What it returns comes before every enabled set; when it returns null they count.
    /// @{
    const ItemSetProvider& itemSetProvider() const noexcept { return itemSetProvider_; }
    void setItemSetProvider(ItemSetProvider provider) { itemSetProvider_ = std::move(provider); }
    /// @}

    /// Appends a new set, which later items are added to. Always enabled without a predicate.
    std::shared_ptr<DynamicToolbarItemSet>
    addItemSet(DynamicToolbarItemSet::Predicate isEnabled = {});

    using DynamicToolbarItemContainer::addItem;
    /// Appends the item to the last set; without a set it is dropped.
    std::shared_ptr<DynamicToolbarItem>
    addItem(const std::shared_ptr<DynamicToolbarItem>& item) override;

    /// Chooses a set, updates its items, and edits the toolbar when other items are to be shown.
    ///
    /// Whatever it calls may change the sets: the sets walked and the items updated are those that
    /// there were when the walk began, the items shown those that the set has after the updates. A
    /// reload asked for meanwhile is done at the end, and so on until none asks for another; after
    /// `ReloadGuard::mostReloads` in a row the program stops.
    void reloadDisplayedItems();

    // As the delegate of its toolbar.

    std::shared_ptr<NSToolbarItem>
    toolbarItemForItemIdentifier(NSToolbar& toolbar, const NSToolbarItemIdentifier& identifier,
                                 bool willBeInsertedIntoToolbar) override;
    std::shared_ptr<NSToolbarItem>
    /// The item of the displayed set; null when that has none of the identifier.
    toolbarMakeItemForIdentifier(NSToolbar& toolbar, const NSToolbarItemIdentifier& identifier);
    std::vector<NSToolbarItemIdentifier> toolbarDefaultItemIdentifiers(NSToolbar& toolbar) override;
    std::vector<NSToolbarItemIdentifier> toolbarAllowedItemIdentifiers(NSToolbar& toolbar) override;

private:
    struct Key {};

public:
    /// For `create`.
    DynamicToolbar(Key, std::string identifier);

private:
    void reloadOnce();
    std::shared_ptr<DynamicToolbarItemSet> chooseItemSet() const;
    void showItems();

    std::shared_ptr<NSToolbar> toolbar_;
    std::shared_ptr<DynamicToolbarItemSet> displayedItemSet_;
    std::vector<std::shared_ptr<DynamicToolbarItemSet>> itemSets_;
    ItemSetProvider itemSetProvider_;
    ReloadGuard reloads_;
};

} // namespace zorvan
