#pragma once

#include <zorvan/interface/NSMenu.h>
#include <zorvan/interface/NSToolbarItem.h>

namespace zorvan {

/// A toolbar item that opens a menu when it is pressed.
class NSMenuToolbarItem : public NSToolbarItem {
public:
    /// With an empty menu.
    static std::shared_ptr<NSMenuToolbarItem> create(NSToolbarItemIdentifier itemIdentifier);
    /// For `create`.
    using NSToolbarItem::NSToolbarItem;

    /// Never null.
    const std::shared_ptr<NSMenu>& menu() const noexcept { return menu_; }
    /// A new, empty one for null.
    void setMenu(std::shared_ptr<NSMenu> menu) {
        menu_ = menu ? std::move(menu) : NSMenu::create();
    }
    /// A mark that shows that there is a menu.
    /// @{
    bool showsIndicator() const noexcept { return showsIndicator_; }
    void setShowsIndicator(bool shows) { change(showsIndicator_, shows); }
    /// @}
    bool performKeyEquivalent(const NSEvent& with) override {
        return isEnabled() && menu_->performKeyEquivalent(with);
    }

private:
    std::shared_ptr<NSMenu> menu_ = NSMenu::create();
    bool showsIndicator_ = true;
};

} // namespace zorvan
