#include <zorvan/interface/DynamicToolbar.h>

#include <zorvan/platform/foundation/UUID.h>

namespace zorvan {

// DynamicToolbarItemSet

void DynamicToolbarItemSet::setIsEnabled(Predicate isEnabled) {
    isEnabled_ = isEnabled ? std::move(isEnabled) : [] { return true; };
}

std::vector<NSToolbarItemIdentifier> DynamicToolbarItemSet::identifiers() const {
    std::vector<NSToolbarItemIdentifier> identifiers;
    for (const auto& item : items_)
        identifiers.push_back(item->identifier());
    return identifiers;
}

// DynamicToolbar

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

std::shared_ptr<DynamicToolbarItemSet>
DynamicToolbar::addItemSet(DynamicToolbarItemSet::Predicate isEnabled) {
    itemSets_.push_back(DynamicToolbarItemSet::create(std::move(isEnabled)));
    return itemSets_.back();
}

std::shared_ptr<DynamicToolbarItem>
DynamicToolbar::addItem(const std::shared_ptr<DynamicToolbarItem>& item) {
    if (!itemSets_.empty())
        itemSets_.back()->addItem(item);
    return item;
}

void DynamicToolbar::reloadDisplayedItems() {
    const auto keptAlive = shared_from_this();
    reloads_.run([this] { reloadOnce(); });
}

void DynamicToolbar::reloadOnce() {
    const std::shared_ptr<DynamicToolbarItemSet> chosen = chooseItemSet();
    if (chosen) {
        const auto items = chosen->items();
        for (const auto& item : items)
            if (const DynamicToolbarItem::Update update = item->update())
                update(*item);
    }
    displayedItemSet_ = chosen;
    showItems();
}

// Callables are copied before they are called, because they may replace themselves.

std::shared_ptr<DynamicToolbarItemSet> DynamicToolbar::chooseItemSet() const {
    std::shared_ptr<DynamicToolbarItemSet> provided;
    if (const ItemSetProvider provider = itemSetProvider_)
        provided = provider();
    const auto sets = itemSets_;
    for (const auto& set : sets) {
        const DynamicToolbarItemSet::Predicate isEnabled = set->isEnabled();
        if (isEnabled())
            return provided ? provided : set;
    }
    return provided;
}

void DynamicToolbar::showItems() {
    std::vector<NSToolbarItemIdentifier> wanted;
    if (displayedItemSet_)
        for (const auto& item : displayedItemSet_->items())
            if (!item->removedFromBar())
                wanted.push_back(item->identifier());
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
    if (displayedItemSet_)
        for (const auto& item : displayedItemSet_->items())
            if (item->identifier() == identifier)
                return item->item();
    return nullptr;
}

std::shared_ptr<NSToolbarItem>
DynamicToolbar::toolbarMakeItemForIdentifier(NSToolbar& toolbar,
                                             const NSToolbarItemIdentifier& identifier) {
    return toolbarItemForItemIdentifier(toolbar, identifier, false);
}

std::vector<NSToolbarItemIdentifier> DynamicToolbar::toolbarDefaultItemIdentifiers(NSToolbar&) {
    return displayedItemSet_ ? displayedItemSet_->identifiers()
                             : std::vector<NSToolbarItemIdentifier>();
}

std::vector<NSToolbarItemIdentifier>
DynamicToolbar::toolbarAllowedItemIdentifiers(NSToolbar& toolbar) {
    return toolbarDefaultItemIdentifiers(toolbar);
}

} // namespace zorvan
