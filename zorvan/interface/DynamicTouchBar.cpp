#include <zorvan/interface/DynamicTouchBar.h>

namespace zorvan {

std::shared_ptr<DynamicTouchBar> DynamicTouchBar::create() {
    const auto made = std::make_shared<DynamicTouchBar>(Key{});
    made->touchBar_->setDefaultItemIdentifiers({});
    made->touchBar_->setDelegate(made);
    return made;
}

void DynamicTouchBar::reloadDisplayedItems() {
    const auto keptAlive = shared_from_this();
    reload();
}

void DynamicTouchBar::showItems(std::vector<std::string> identifiers) {
    touchBar_->setDefaultItemIdentifiers(std::move(identifiers));
}

std::shared_ptr<NSTouchBarItem>
DynamicTouchBar::touchBarMakeItemForIdentifier(NSTouchBar&,
                                               const NSTouchBarItemIdentifier& identifier) {
    return makeItem(identifier);
}

} // namespace zorvan
