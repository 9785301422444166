#include <zorvan/interface/NSTouchBar.h>

#include <zorvan/interface/NSWindow.h>

#include <algorithm>

namespace zorvan {

std::shared_ptr<NSTouchBarItem> NSTouchBarItem::create(NSTouchBarItemIdentifier identifier) {
    return std::make_shared<NSTouchBarItem>(Key{}, std::move(identifier));
}

std::shared_ptr<NSCustomTouchBarItem>
NSCustomTouchBarItem::create(NSTouchBarItemIdentifier identifier) {
    return std::make_shared<NSCustomTouchBarItem>(Key{}, std::move(identifier));
}

std::shared_ptr<NSTouchBar> NSTouchBar::create() { return std::make_shared<NSTouchBar>(Key{}); }

std::shared_ptr<NSTouchBarItem> NSTouchBar::makeItem(const NSTouchBarItemIdentifier& identifier) {
    if (const auto giver = delegate())
        if (auto item = giver->touchBarMakeItemForIdentifier(*this, identifier))
            return item;
    const bool isSpace = identifier == NSTouchBarItemIdentifierFixedSpaceSmall ||
                         identifier == NSTouchBarItemIdentifierFixedSpaceLarge ||
                         identifier == NSTouchBarItemIdentifierFlexibleSpace;
    return isSpace ? NSTouchBarItem::create(identifier) : nullptr;
}

void NSTouchBar::setDefaultItemIdentifiers(std::vector<NSTouchBarItemIdentifier> identifiers) {
    const auto keptAlive = weak_from_this().lock();
    std::vector<std::shared_ptr<NSTouchBarItem>> items;
    for (const NSTouchBarItemIdentifier& identifier : identifiers)
        if (auto item = makeItem(identifier))
            items.push_back(std::move(item));
    defaultItemIdentifiers_ = std::move(identifiers);
    items_ = std::move(items);
    if (const auto shown = window())
        shown->barDidChange(&NSWindowObserver::touchBarDidChange);
}

std::shared_ptr<NSTouchBarItem>
NSTouchBar::item(const NSTouchBarItemIdentifier& forIdentifier) const {
    const auto found = std::find_if(items_.begin(), items_.end(), [&](const auto& item) {
        return item->identifier() == forIdentifier;
    });
    return found == items_.end() ? nullptr : *found;
}

} // namespace zorvan
