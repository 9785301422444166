#include <zorvan/interface/DynamicTouchBar.h>

#include <zorvan/interface/internal/dynamicBars.h>

namespace zorvan {

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
    const std::shared_ptr<DynamicTouchBarItemSet> chosen = internal::firstEnabled(itemSets_);
    if (chosen)
        internal::updateAll(chosen->items());
    displayedItemSet_ = chosen;
    touchBar_->setDefaultItemIdentifiers(internal::shownIdentifiers(chosen));
}

std::shared_ptr<NSTouchBarItem>
DynamicTouchBar::makeItem(const NSTouchBarItemIdentifier& identifier) const {
    return internal::shownItem<NSTouchBarItem>(displayedItemSet_, identifier);
}

std::shared_ptr<NSTouchBarItem>
DynamicTouchBar::touchBarMakeItemForIdentifier(NSTouchBar&,
                                               const NSTouchBarItemIdentifier& identifier) {
    return makeItem(identifier);
}

} // namespace zorvan
