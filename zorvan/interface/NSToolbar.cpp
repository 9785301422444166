#include <zorvan/interface/NSToolbar.h>

#include <zorvan/interface/NSWindow.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>

namespace zorvan {

std::shared_ptr<NSToolbar> NSToolbar::create(std::string identifier) {
    return std::make_shared<NSToolbar>(Key{}, std::move(identifier));
}

std::vector<NSToolbarItemIdentifier>
NSToolbarDelegate::toolbarSelectableItemIdentifiers(NSToolbar&) {
    return {};
}

std::vector<NSToolbarItemIdentifier> NSToolbar::itemIdentifiers() const {
    std::vector<NSToolbarItemIdentifier> identifiers;
    for (const auto& item : items_)
        identifiers.push_back(item->itemIdentifier());
    return identifiers;
}

std::shared_ptr<NSToolbarItem> NSToolbar::makeItem(const NSToolbarItemIdentifier& identifier) {
    if (const auto giver = delegate())
        if (auto item = giver->toolbarItemForItemIdentifier(*this, identifier, true))
            return item;
    const bool isSpace = identifier == NSToolbarFlexibleSpaceItemIdentifier ||
                         identifier == NSToolbarSpaceItemIdentifier;
    return isSpace ? NSToolbarItem::create(identifier) : nullptr;
}

void NSToolbar::insertItem(const NSToolbarItemIdentifier& withItemIdentifier, std::int64_t at) {
    if (at < 0)
        fatalError("A toolbar item cannot be inserted before the first place.");
    const auto keptAlive = weak_from_this().lock();
    const NSToolbarItemIdentifier identifier = withItemIdentifier;
    showsDefaultItems_ = false;
    if (const auto item = makeItem(identifier)) {
        // The delegate may itself have inserted and removed meanwhile.
        const auto place = std::min(at, static_cast<std::int64_t>(items_.size()));
        items_.insert(items_.begin() + place, item);
        item->toolbar_ = weak_from_this();
        didChange();
    }
}

void NSToolbar::removeItem(std::int64_t at) {
    if (at < 0 || at >= static_cast<std::int64_t>(items_.size()))
        fatalError("A toolbar has no item to remove there.");
    const auto keptAlive = weak_from_this().lock();
    const auto item = items_[static_cast<std::size_t>(at)];
    showsDefaultItems_ = false;
    items_.erase(items_.begin() + at);
    if (std::find(items_.begin(), items_.end(), item) == items_.end())
        item->toolbar_.reset();
    didChange();
}

bool NSToolbar::performKeyEquivalent(const NSEvent& with) {
    const auto items = items_;
    return std::any_of(items.begin(), items.end(),
                       [&with](const auto& item) { return item->performKeyEquivalent(with); });
}

void NSToolbar::comeInto(const std::shared_ptr<NSWindow>& window) {
    window_ = window;
    const auto giver = delegate();
    if (!window || !showsDefaultItems_ || !giver)
        return;
    std::int64_t place = 0;
    for (const NSToolbarItemIdentifier& identifier : giver->toolbarDefaultItemIdentifiers(*this))
        insertItem(identifier, place++);
}

void NSToolbar::didChange() {
    if (const auto shown = window())
        shown->barDidChange(&NSWindowObserver::toolbarDidChange);
}

} // namespace zorvan
