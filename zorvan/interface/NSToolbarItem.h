#pragma once

#include <zorvan/interface/Selector.h>
#include <zorvan/platform/appkit/NSView.h>
#include <zorvan/platform/foundation/NameLiteral.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace zorvan {

class NSImage;
class NSToolbar;

/// What tells the items of a toolbar apart.
using NSToolbarItemIdentifier = std::string;

/// Items that a toolbar makes itself.
/// Takes all the room that is left.
inline constexpr NameLiteral NSToolbarFlexibleSpaceItemIdentifier = "NSToolbarFlexibleSpaceItem";
/// Of a fixed width.
inline constexpr NameLiteral NSToolbarSpaceItemIdentifier = "NSToolbarSpaceItem";

/// One item of a toolbar: a view, or an image that sends an action when it is pressed.
class NSToolbarItem : public ActionSender, public std::enable_shared_from_this<NSToolbarItem> {
protected:
    /// What only items can name, so that they are made by `create`.
    struct Key {};

public:
    /// An enabled item that shows nothing yet.
    static std::shared_ptr<NSToolbarItem> create(NSToolbarItemIdentifier itemIdentifier);
    /// For `create`.
    NSToolbarItem(Key, NSToolbarItemIdentifier itemIdentifier)
        : identifier_(std::move(itemIdentifier)) {}

    /// What tells the item from the others of its toolbar.
    const NSToolbarItemIdentifier& itemIdentifier() const noexcept { return identifier_; }
    /// Shown below the item in the display modes that have labels.
    /// @{
    const std::string& label() const noexcept { return label_; }
    void setLabel(std::string label) { change(label_, std::move(label)); }
    /// @}
    /// Shown on the item itself, in place of an image.
    /// @{
    const std::string& title() const noexcept { return title_; }
    void setTitle(std::string title) { change(title_, std::move(title)); }
    /// @}
    /// Shown while the mouse rests over the item; empty for none.
    const std::string& toolTip() const noexcept { return toolTip_; }
    /// A view of the item that has none gets it too.
    void setToolTip(std::string toolTip);
    /// Whether the item stands at the leading edge, before every other.
    /// @{
    bool isNavigational() const noexcept { return isNavigational_; }
    void setNavigational(bool navigational) { change(isNavigational_, navigational); }
    /// @}

    /// Null when the item is shown by its image alone.
    /// @{
    const std::shared_ptr<NSView>& view() const noexcept { return view_; }
    void setView(std::shared_ptr<NSView> view);
    /// @}
    /// Null for none.
    /// @{
    const std::shared_ptr<NSImage>& image() const noexcept { return image_; }
    void setImage(std::shared_ptr<NSImage> image) { change(image_, std::move(image)); }
    /// @}

    /// Whether the item can be pressed; true unless set.
    /// @{
    bool isEnabled() const noexcept { return isEnabled_; }
    void setEnabled(bool enabled);
    /// @}
    /// Null without a target, and once it has gone.
    std::shared_ptr<void> target() const noexcept { return target_.lock(); }
    /// Not kept alive.
    void setTarget(std::weak_ptr<void> target) { target_ = std::move(target); }
    /// What a press sends; absent for nothing.
    /// @{
    const std::optional<Selector>& action() const noexcept { return action_; }
    void setAction(std::optional<Selector> action) { action_ = std::move(action); }
    /// @}
    /// Sends the action with the item as its sender; false when there is none or nothing performed
    /// it.
    bool sendAction();

    /// Whether the item does something for the key, and has done it then.
    virtual bool performKeyEquivalent(const NSEvent& with);

    /// The toolbar that shows the item; null outside of one.
    std::shared_ptr<NSToolbar> toolbar() const noexcept { return toolbar_.lock(); }

protected:
    /// Shows what has changed.
    void didChange();
    /// The same for a property that takes a value.
    template <class Property, class Value>
    void change(Property& property, Value value) {
        property = std::move(value);
        didChange();
    }

private:
    friend class NSToolbar;
    friend class NSToolbarItemGroup;
    void passToolTipOn();

    NSToolbarItemIdentifier identifier_;
    std::string label_;
    std::string title_;
    std::string toolTip_;
    std::shared_ptr<NSView> view_;
    std::shared_ptr<NSImage> image_;
    std::optional<Selector> action_;
    std::weak_ptr<void> target_;
    std::weak_ptr<NSToolbar> toolbar_;
    /// Of which it is a subitem.
    std::weak_ptr<NSToolbarItem> group_;
    bool isNavigational_ = false;
    bool isEnabled_ = true;
};

} // namespace zorvan
