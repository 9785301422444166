#include <zorvan/interface/NSToolbarItem.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/NSControl.h>
#include <zorvan/interface/NSToolbar.h>

namespace zorvan {

std::shared_ptr<NSToolbarItem> NSToolbarItem::create(NSToolbarItemIdentifier itemIdentifier) {
    return std::make_shared<NSToolbarItem>(Key{}, std::move(itemIdentifier));
}

void NSToolbarItem::setView(std::shared_ptr<NSView> view) {
    view_ = std::move(view);
    passToolTipOn();
    didChange();
}

void NSToolbarItem::setToolTip(std::string toolTip) {
    toolTip_ = std::move(toolTip);
    passToolTipOn();
    didChange();
}

void NSToolbarItem::passToolTipOn() {
    if (view_ && view_->toolTip().empty())
        view_->setToolTip(toolTip_);
}

void NSToolbarItem::setEnabled(bool enabled) {
    isEnabled_ = enabled;
    if (const auto control = std::dynamic_pointer_cast<NSControl>(view_))
        control->setEnabled(enabled);
    didChange();
}

bool NSToolbarItem::sendAction() {
    return action_ && NSApplication::shared().sendAction(*action_, target_, shared_from_this());
}

bool NSToolbarItem::performKeyEquivalent(const NSEvent& with) {
    // A view in the window has been asked already.
    return view_ && !view_->window() && view_->performKeyEquivalent(with);
}

void NSToolbarItem::didChange() {
    const auto group = group_.lock();
    for (const auto& holder : {toolbar(), group ? group->toolbar() : nullptr})
        if (holder)
            holder->didChange();
}

} // namespace zorvan
