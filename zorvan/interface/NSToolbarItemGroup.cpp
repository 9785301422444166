#include <zorvan/interface/NSToolbarItemGroup.h>

#include <zorvan/platform/foundation/UUID.h>

#include <algorithm>

namespace zorvan {

namespace {

/// One subitem for each thing shown, named by its label.
template <class Shown>
std::vector<std::shared_ptr<NSToolbarItem>> subitems(const std::vector<Shown>& shown,
                                                     const std::vector<std::string>& labels,
                                                     void (NSToolbarItem::*show)(Shown)) {
    std::vector<std::shared_ptr<NSToolbarItem>> items;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        items.push_back(NSToolbarItem::create(makeUUIDString()));
        ((*items.back()).*show)(shown[i]);
        items.back()->setLabel(i < labels.size() ? labels[i] : items.back()->title());
    }
    return items;
}

} // namespace

template <class Settings>
std::shared_ptr<NSToolbarItemGroup>
NSToolbarItemGroup::made(const Settings& group,
                         std::vector<std::shared_ptr<NSToolbarItem>> subitems) {
    auto made = std::make_shared<NSToolbarItemGroup>(Key{}, group.itemIdentifier);
    made->setSubitems(std::move(subitems));
    made->setSelectionMode(group.selectionMode);
    made->setTarget(group.target);
    made->setAction(group.action);
    return made;
}

std::shared_ptr<NSToolbarItemGroup> NSToolbarItemGroup::create(Images group) {
    return made(group, zorvan::subitems(group.images, group.labels, &NSToolbarItem::setImage));
}

std::shared_ptr<NSToolbarItemGroup> NSToolbarItemGroup::create(Titles group) {
    return made(group, zorvan::subitems(group.titles, group.labels, &NSToolbarItem::setTitle));
}

void NSToolbarItemGroup::setSubitems(std::vector<std::shared_ptr<NSToolbarItem>> subitems) {
    for (const auto& item : subitems_)
        if (item->group_.lock().get() == this)
            item->group_.reset();
    subitems_ = std::move(subitems);
    std::erase(subitems_, nullptr);
    for (const auto& item : subitems_)
        item->group_ = weak_from_this();
    selected_.assign(subitems_.size(), false);
    didChange();
}

void NSToolbarItemGroup::setSelectionMode(SelectionMode mode) {
    selectionMode_ = mode;
    if (mode == SelectionMode::momentary)
        selected_.assign(subitems_.size(), false);
    if (mode == SelectionMode::selectOne)
        setSelectedIndex(selectedIndex());
    didChange();
}

std::int64_t NSToolbarItemGroup::selectedIndex() const noexcept {
    const auto first = std::find(selected_.begin(), selected_.end(), true);
    return first == selected_.end() ? -1 : first - selected_.begin();
}

void NSToolbarItemGroup::setSelectedIndex(std::int64_t index) {
    selected_.assign(subitems_.size(), false);
    setSelected(true, index);
    didChange();
}

bool NSToolbarItemGroup::isSelected(std::int64_t at) const noexcept {
    return has(at) && selected_[static_cast<std::size_t>(at)];
}

void NSToolbarItemGroup::setSelected(bool selected, std::int64_t at) {
    if (!has(at))
        return;
    if (selected && selectionMode_ != SelectionMode::selectAny)
        selected_.assign(subitems_.size(), false);
    selected_[static_cast<std::size_t>(at)] = selected;
    didChange();
}

void NSToolbarItemGroup::press(std::int64_t at) {
    if (!has(at) || !isEnabled())
        return;
    const auto item = subitems_[static_cast<std::size_t>(at)];
    if (!item->isEnabled())
        return;
    if (selectionMode_ == SelectionMode::selectOne)
        setSelectedIndex(at);
    else if (selectionMode_ == SelectionMode::selectAny)
        setSelected(!isSelected(at), at);
    if (item->action())
        item->sendAction();
    else
        sendAction();
}

} // namespace zorvan
