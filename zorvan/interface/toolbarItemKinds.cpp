#include <zorvan/interface/NSMenuToolbarItem.h>
#include <zorvan/interface/NSSearchToolbarItem.h>
#include <zorvan/interface/NSToolbar.h>
#include <zorvan/interface/NSTrackingSeparatorToolbarItem.h>

namespace zorvan {

// NSSearchToolbarItem

std::shared_ptr<NSSearchToolbarItem>
NSSearchToolbarItem::create(NSToolbarItemIdentifier itemIdentifier) {
    const auto item = std::make_shared<NSSearchToolbarItem>(Key{}, std::move(itemIdentifier));
    item->setSearchField(nullptr);
    return item;
}

void NSSearchToolbarItem::setSearchField(std::shared_ptr<NSSearchField> searchField) {
    searchField_ = searchField ? std::move(searchField) : NSSearchField::create();
    setView(searchField_);
}

// NSMenuToolbarItem

std::shared_ptr<NSMenuToolbarItem>
NSMenuToolbarItem::create(NSToolbarItemIdentifier itemIdentifier) {
    return std::make_shared<NSMenuToolbarItem>(Key{}, std::move(itemIdentifier));
}

// NSTrackingSeparatorToolbarItem

std::shared_ptr<NSTrackingSeparatorToolbarItem>
NSTrackingSeparatorToolbarItem::create(NSToolbarItemIdentifier itemIdentifier,
                                       std::shared_ptr<NSSplitView> splitView,
                                       std::int64_t dividerIndex) {
    auto item = std::make_shared<NSTrackingSeparatorToolbarItem>(Key{}, std::move(itemIdentifier));
    item->splitView_ = std::move(splitView);
    item->dividerIndex_ = dividerIndex;
    return item;
}

std::optional<double> NSTrackingSeparatorToolbarItem::dividerPosition() const {
    const auto bar = toolbar();
    if (!splitView_ || !splitView_->isVertical() || !bar || !bar->window() ||
        splitView_->window() != bar->window())
        return std::nullopt;
    const std::optional<double> position = splitView_->position(dividerIndex_);
    if (!position)
        return std::nullopt;
    const CGRect all = splitView_->bounds();
    return splitView_->convertToBase({all.minX() + *position, all.minY()}).x;
}

} // namespace zorvan
