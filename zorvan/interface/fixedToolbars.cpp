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

const std::shared_ptr<NSToolbarItem>& made(std::shared_ptr<NSToolbarItem>& item,
                                           std::string_view identifier,
                                           const std::shared_ptr<NSView>& view) {
    if (!item) {
        item = NSToolbarItem::create(NSToolbarItemIdentifier(identifier));
        item->setView(view);
    }
    return item;
}

/// In the item too, when that has been made.
void replace(std::shared_ptr<NSView>& view, std::shared_ptr<NSView> by,
             const std::shared_ptr<NSToolbarItem>& item) {
    view = std::move(by);
    if (item)
        item->setView(view);
}

} // namespace

// DividedToolbar

void DividedToolbar::setLeftItemView(std::shared_ptr<NSView> view) {
    replace(leftItemView_, view ? std::move(view) : emptyView(), leftToolbarItem_);
}

void DividedToolbar::setCenterItemView(std::shared_ptr<NSView> view) {
    replace(centerItemView_, view ? std::move(view) : emptyView(), centerToolbarItem_);
}

void DividedToolbar::setRightItemView(std::shared_ptr<NSView> view) {
    replace(rightItemView_, view ? std::move(view) : emptyView(), rightToolbarItem_);
}

std::shared_ptr<DividedToolbar> DividedToolbar::create(std::string identifier) {
    const auto toolbar = std::make_shared<DividedToolbar>(Key{}, std::move(identifier));
    configure(toolbar);
    return toolbar;
}

const std::shared_ptr<NSToolbarItem>& DividedToolbar::leftToolbarItem() {
    return made(leftToolbarItem_, leftItemIdentifier, leftItemView_);
}

const std::shared_ptr<NSToolbarItem>& DividedToolbar::centerToolbarItem() {
    return made(centerToolbarItem_, centerItemIdentifier, centerItemView_);
}

const std::shared_ptr<NSToolbarItem>& DividedToolbar::rightToolbarItem() {
    return made(rightToolbarItem_, rightItemIdentifier, rightItemView_);
}

std::shared_ptr<NSToolbarItem>
DividedToolbar::toolbarItemForItemIdentifier(NSToolbar&, const NSToolbarItemIdentifier& identifier,
                                             bool) {
    if (identifier == leftItemIdentifier)
        return leftToolbarItem();
    if (identifier == centerItemIdentifier)
        return centerToolbarItem();
    return identifier == rightItemIdentifier ? rightToolbarItem() : nullptr;
}

std::vector<NSToolbarItemIdentifier> DividedToolbar::toolbarDefaultItemIdentifiers(NSToolbar&) {
    using Identifier = NSToolbarItemIdentifier;
    const Identifier space(NSToolbarFlexibleSpaceItemIdentifier);
    return {Identifier(leftItemIdentifier), space, Identifier(centerItemIdentifier), space,
            Identifier(rightItemIdentifier)};
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
