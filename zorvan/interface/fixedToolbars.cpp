#include <zorvan/interface/DividedToolbar.h>
#include <zorvan/interface/EmptyToolbar.h>

namespace zorvan {

namespace {

template <class Toolbar>
void configure(const std::shared_ptr<Toolbar>& toolbar) {
    toolbar->setAllowsUserCustomization(false);
    toolbar->setShowsBaselineSeparator(false);
    toolbar->setDisplayMode(NSToolbar::DisplayMode::iconOnly);
    toolbar->setDelegate(toolbar);
}

} // namespace

// DividedToolbar

/// In the item too, when that has been made.
void DividedToolbar::Part::setView(std::shared_ptr<NSView> newView) {
    view = newView ? std::move(newView) : emptyView();
    if (item)
        item->setView(view);
}

const std::shared_ptr<NSToolbarItem>& DividedToolbar::Part::madeItem() {
    if (!item) {
        item = NSToolbarItem::create(identifier);
        item->setView(view);
    }
    return item;
}

std::shared_ptr<DividedToolbar> DividedToolbar::create(std::string identifier) {
    const auto toolbar = std::make_shared<DividedToolbar>(Key{}, std::move(identifier));
    configure(toolbar);
    return toolbar;
}

std::shared_ptr<NSToolbarItem>
DividedToolbar::toolbarItemForItemIdentifier(NSToolbar&, const NSToolbarItemIdentifier& identifier,
                                             bool) {
    for (Part* const part : {&left_, &center_, &right_})
        if (part->identifier == identifier)
            return part->madeItem();
    return nullptr;
}

std::vector<NSToolbarItemIdentifier> DividedToolbar::toolbarDefaultItemIdentifiers(NSToolbar&) {
    const NSToolbarItemIdentifier space(NSToolbarFlexibleSpaceItemIdentifier);
    return {left_.identifier, space, center_.identifier, space, right_.identifier};
}

std::vector<NSToolbarItemIdentifier>
DividedToolbar::toolbarAllowedItemIdentifiers(NSToolbar& toolbar) {
    return toolbarDefaultItemIdentifiers(toolbar);
}

// EmptyToolbar

std::shared_ptr<EmptyToolbar> EmptyToolbar::create(std::string identifier) {
    const auto toolbar = std::make_shared<EmptyToolbar>(Key{}, std::move(identifier));
    configure(toolbar);
    return toolbar;
}

std::shared_ptr<NSToolbarItem>
EmptyToolbar::toolbarItemForItemIdentifier(NSToolbar&, const NSToolbarItemIdentifier& identifier,
                                           bool) {
    return NSToolbarItem::create(identifier);
}

std::vector<NSToolbarItemIdentifier> EmptyToolbar::toolbarDefaultItemIdentifiers(NSToolbar&) {
    return {NSToolbarItemIdentifier(NSToolbarFlexibleSpaceItemIdentifier)};
}

std::vector<NSToolbarItemIdentifier>
EmptyToolbar::toolbarAllowedItemIdentifiers(NSToolbar& toolbar) {
    return toolbarDefaultItemIdentifiers(toolbar);
}

} // namespace zorvan
