#include <zorvan/interface/DynamicTouchBar.h>

namespace zorvan {

void DynamicTouchBarItemSet::setIsEnabled(Predicate isEnabled) {
    isEnabled_ = isEnabled ? std::move(isEnabled) : [] { return true; };
}

std::shared_ptr<DynamicTouchBar> DynamicTouchBar::create() {
    const auto made = std::make_shared<DynamicTouchBar>(Key{});
    made->touchBar_->setDefaultItemIdentifiers({});
    made->touchBar_->setDelegate(made);
    return made;
}

std::shared_ptr<DynamicTouchBarItemSet>
DynamicTouchBar::addItemSet(DynamicTouchBarItemSet::Predicate isEnabled) {
    itemSets_.push_back(DynamicTouchBarItemSet::create(std::move(isEnabled)));
    return itemSets_.back();
}

std::shared_ptr<DynamicTouchBarItem>
DynamicTouchBar::addItem(const std::shared_ptr<DynamicTouchBarItem>& item) {
    if (!itemSets_.empty())
        itemSets_.back()->addItem(item);
    return item;
}

void DynamicTouchBar::reloadDisplayedItems() {
    const auto keptAlive = shared_from_this();
    reloads_.run([this] { reloadOnce(); });
}

void DynamicTouchBar::reloadOnce() {
    const std::shared_ptr<DynamicTouchBarItemSet> chosen = firstEnabledSet();
    if (chosen) {
        const auto items = chosen->items();
        for (const auto& item : items)
            if (const DynamicTouchBarItem::Update update = item->update())
                update(*item);
    }
    displayedItemSet_ = chosen;
    std::vector<NSTouchBarItemIdentifier> shown;
    if (chosen)
        for (const auto& item : chosen->items())
            if (!item->removedFromBar())
                shown.push_back(item->identifier());
    touchBar_->setDefaultItemIdentifiers(std::move(shown));
}

std::shared_ptr<DynamicTouchBarItemSet> DynamicTouchBar::firstEnabledSet() const {
    const auto sets = itemSets_;
    for (const auto& set : sets) {
        // It may replace itself.
        const DynamicTouchBarItemSet::Predicate isEnabled = set->isEnabled();
        if (isEnabled())
            return set;
    }
    return nullptr;
}

std::shared_ptr<NSTouchBarItem>
DynamicTouchBar::makeItem(const NSTouchBarItemIdentifier& identifier) const {
    if (displayedItemSet_)
        for (const auto& item : displayedItemSet_->items())
            if (item->identifier() == identifier)
                return item->item();
    return nullptr;
}

std::shared_ptr<NSTouchBarItem>
DynamicTouchBar::touchBarMakeItemForIdentifier(NSTouchBar&,
                                               const NSTouchBarItemIdentifier& identifier) {
    return makeItem(identifier);
}

} // namespace zorvan
