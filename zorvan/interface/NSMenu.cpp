#include <zorvan/interface/NSMenu.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/platform/foundation/fatalError.h>

namespace zorvan {

std::shared_ptr<NSMenuItem> NSMenuItem::create(std::string title, std::optional<Selector> action,
                                               std::weak_ptr<void> target) {
    const auto item = std::make_shared<NSMenuItem>(Key{}, std::move(title));
    item->action_ = std::move(action);
    item->target_ = std::move(target);
    return item;
}

std::shared_ptr<NSMenuItem> NSMenuItem::separatorItem() {
    const auto item = std::make_shared<NSMenuItem>(Key{}, std::string());
    item->isSeparator_ = true;
    item->isEnabled_ = false;
    return item;
}

std::shared_ptr<NSMenu> NSMenu::create(std::string title) {
    return std::make_shared<NSMenu>(Key{}, std::move(title));
}

std::shared_ptr<NSMenuItem> NSMenu::item(std::int64_t at) const noexcept {
    return at >= 0 && at < numberOfItems() ? items_[static_cast<std::size_t>(at)] : nullptr;
}

std::int64_t NSMenu::index(const NSMenuItem& ofItem) const noexcept {
    for (std::int64_t i = 0; i < numberOfItems(); ++i)
        if (item(i).get() == &ofItem)
            return i;
    return -1;
}

void NSMenu::addItem(const std::shared_ptr<NSMenuItem>& item) {
    if (item->menu())
        fatalError("A menu item stands in a menu already.");
    item->menu_ = weak_from_this();
    items_.push_back(item);
}

void NSMenu::removeAllItems() {
    for (const auto& item : items_)
        item->menu_.reset();
    items_.clear();
}

bool NSMenu::performActionForItem(std::int64_t at) {
    const auto chosen = item(at);
    return chosen && chosen->isEnabled() && chosen->action() &&
           NSApplication::shared().sendAction(*chosen->action(), chosen->target_, chosen);
}

bool NSMenu::performKeyEquivalent(const NSEvent& with) { return performKeyEquivalent(with, 0); }

bool NSMenu::performKeyEquivalent(const NSEvent& with, int depth) {
    constexpr int deepest = 16; // a menu may hold itself
    const auto keptAlive = shared_from_this();
    for (std::int64_t i = 0; depth < deepest && i < numberOfItems(); ++i) {
        const auto chosen = item(i);
        if (chosen->submenu() && chosen->isEnabled() &&
            chosen->submenu()->performKeyEquivalent(with, depth + 1))
            return true;
        if (isKeyEquivalent(with, chosen->keyEquivalent(), chosen->keyEquivalentModifierMask()) &&
            performActionForItem(i))
            return true;
    }
    return false;
}

namespace {

std::function<void(NSMenu&)>& menuHost() {
    static std::function<void(NSMenu&)> host;
    return host;
}

} // namespace

void NSMenu::setHost(std::function<void(NSMenu&)> host) { menuHost() = std::move(host); }

void NSMenu::popUp() {
    const auto keptAlive = shared_from_this();
    if (const auto host = menuHost())
        host(*this);
}

} // namespace zorvan
