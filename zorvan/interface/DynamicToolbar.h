#pragma once

#include <zorvan/interface/DynamicBar.h>
#include <zorvan/interface/DynamicToolbarItemSet.h>
#include <zorvan/interface/NSToolbar.h>

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
class DynamicToolbar : public DynamicBar<NSToolbarItem, DynamicToolbarItemContainer>,
                       public NSToolbarDelegate,
                       public std::enable_shared_from_this<DynamicToolbar> {
    struct Key {};

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
    /// For `create`.
    DynamicToolbar(Key, std::string identifier);

    /// The toolbar, whose delegate this is.
    const std::shared_ptr<NSToolbar>& toolbar() const noexcept { return toolbar_; }
    /// What it returns comes before every enabled set; when it returns null they count.
    /// @{
    const ItemSetProvider& itemSetProvider() const noexcept { return itemSetProvider_; }
    void setItemSetProvider(ItemSetProvider provider) { itemSetProvider_ = std::move(provider); }
    /// @}

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
    /// The item of the displayed set; null when that has none of the identifier.
    std::shared_ptr<NSToolbarItem>
    toolbarMakeItemForIdentifier(NSToolbar& toolbar, const NSToolbarItemIdentifier& identifier);
    std::vector<NSToolbarItemIdentifier> toolbarDefaultItemIdentifiers(NSToolbar& toolbar) override;
    std::vector<NSToolbarItemIdentifier> toolbarAllowedItemIdentifiers(NSToolbar& toolbar) override;

private:
    std::shared_ptr<DynamicToolbarItemSet> chosenItemSet() const override;
    void showItems(std::vector<std::string> identifiers) override;

    std::shared_ptr<NSToolbar> toolbar_;
    ItemSetProvider itemSetProvider_;
};

} // namespace zorvan
