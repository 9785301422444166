#include <zorvan/interface/DynamicToolbar.h>

#include <zorvan/platform/foundation/UUID.h>

namespace zorvan {

std::shared_ptr<DynamicToolbar> DynamicToolbar::create(Identifier toolbar) {
    const auto made = std::make_shared<DynamicToolbar>(Key{}, std::move(toolbar.identifier));
    made->toolbar_->setDelegate(made);
    return made;
}

std::shared_ptr<DynamicToolbar> DynamicToolbar::create() { return create({makeUUIDString()}); }

DynamicToolbar::DynamicToolbar(Key, std::string identifier)
    : toolbar_(NSToolbar::create(std::move(identifier))) {
    toolbar_->setAutosavesConfiguration(false);
    toolbar_->setShowsBaselineSeparator(true);
    toolbar_->setDisplayMode(NSToolbar::DisplayMode::iconOnly);
    // The default items include those removed from the bar.
    toolbar_->forgoDefaultItems();
}

void DynamicToolbar::reloadDisplayedItems() {
    const auto keptAlive = shared_from_this();
    reload();
}

std::shared_ptr<DynamicToolbarItemSet> DynamicToolbar::chosenItemSet() const {
    std::shared_ptr<DynamicToolbarItemSet> provided;
    if (const ItemSetProvider provider = itemSetProvider_) // it may replace itself
        provided = provider();
    const auto enabled = DynamicBar::chosenItemSet();
    return provided ? provided : enabled;
}

void DynamicToolbar::showItems(std::vector<std::string> wanted) {
    const std::vector<NSToolbarItemIdentifier> current = toolbar_->itemIdentifiers();
    if (wanted == current)
        return;
    // An observer of the toolbar may edit it too, so that its count is asked again.
    for (std::size_t i = 0; i < current.size() && !toolbar_->items().empty(); ++i)
        toolbar_->removeItem(0);
    for (std::size_t i = 0; i < wanted.size(); ++i)
        toolbar_->insertItem(wanted[i], static_cast<std::int64_t>(i));
}

std::shared_ptr<NSToolbarItem>
DynamicToolbar::toolbarItemForItemIdentifier(NSToolbar&, const NSToolbarItemIdentifier& identifier,
                                             bool) {
    return shownItem(identifier);
}

std::shared_ptr<NSToolbarItem>
DynamicToolbar::toolbarMakeItemForIdentifier(NSToolbar& toolbar,
                                             const NSToolbarItemIdentifier& identifier) {
    return toolbarItemForItemIdentifier(toolbar, identifier, false);
}

std::vector<NSToolbarItemIdentifier> DynamicToolbar::toolbarDefaultItemIdentifiers(NSToolbar&) {
    return displayedItemSet() ? displayedItemSet()->identifiers()
                              : std::vector<NSToolbarItemIdentifier>();
}

std::vector<NSToolbarItemIdentifier>
DynamicToolbar::toolbarAllowedItemIdentifiers(NSToolbar& toolbar) {
    return toolbarDefaultItemIdentifiers(toolbar);
}

} // namespace zorvan
