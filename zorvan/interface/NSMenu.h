#pragma once

#include <zorvan/interface/Selector.h>
#include <zorvan/platform/appkit/NSEvent.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zorvan {

class NSImage;
class NSMenu;

/// A line of a menu: a command with a title, a line that opens another menu, or a separator.
class NSMenuItem : public ActionSender, public std::enable_shared_from_this<NSMenuItem> {
    struct Key {};
    friend class NSMenu;

public:
    /// The target is not kept alive.
    static std::shared_ptr<NSMenuItem>
    create(std::string title, std::optional<Selector> action = {}, std::weak_ptr<void> target = {});
    /// A line between others, without title.
    static std::shared_ptr<NSMenuItem> separatorItem();
    /// For `create`.
    NSMenuItem(Key, std::string title) : title_(std::move(title)) {}

    /// What the line says.
    /// @{
    const std::string& title() const noexcept { return title_; }
    void setTitle(std::string title) { title_ = std::move(title); }
    /// @}
    /// Whether it was made by `separatorItem`.
    bool isSeparatorItem() const noexcept { return isSeparator_; }
    /// A disabled item performs nothing. True unless set.
    /// @{
    bool isEnabled() const noexcept { return isEnabled_; }
    void setEnabled(bool enabled) { isEnabled_ = enabled; }
    /// @}
    /// Null without a target and once it has gone.
    /// @{
    std::shared_ptr<void> target() const noexcept { return target_.lock(); }
    void setTarget(std::weak_ptr<void> target) { target_ = std::move(target); }
    /// @}
    /// What is sent when the item is chosen; absent for nothing.
    /// @{
    const std::optional<Selector>& action() const noexcept { return action_; }
    void setAction(std::optional<Selector> action) { action_ = std::move(action); }
    /// @}
    /// The character of the key that does the same as choosing the item, in lower case; empty, as
    /// at first, for none. "\r" is Enter, "\b" Backspace, "\x7f" Delete.
    /// @{
    const std::string& keyEquivalent() const noexcept { return keyEquivalent_; }
    void setKeyEquivalent(std::string key) { keyEquivalent_ = std::move(key); }
    /// @}
    /// What must be held down with it; `control` unless set.
    /// @{
    NSEvent::ModifierFlags keyEquivalentModifierMask() const noexcept { return modifiers_; }
    void setKeyEquivalentModifierMask(NSEvent::ModifierFlags modifiers) { modifiers_ = modifiers; }
    /// @}
    /// Whether there is a check mark; false unless set.
    /// @{
    bool state() const noexcept { return state_; }
    void setState(bool state) { state_ = state; }
    /// @}
    /// Beside the title; null for none.
    /// @{
    const std::shared_ptr<NSImage>& image() const noexcept { return image_; }
    void setImage(std::shared_ptr<NSImage> image) { image_ = std::move(image); }
    /// @}
    /// Null unless the item opens a menu.
    /// @{
    const std::shared_ptr<NSMenu>& submenu() const noexcept { return submenu_; }
    void setSubmenu(std::shared_ptr<NSMenu> submenu) { submenu_ = std::move(submenu); }
    /// @}

    /// The menu that the item stands in; null outside of one.
    std::shared_ptr<NSMenu> menu() const noexcept { return menu_.lock(); }

private:
    std::string title_;
    std::optional<Selector> action_;
    std::weak_ptr<void> target_;
    std::shared_ptr<NSMenu> submenu_;
    std::weak_ptr<NSMenu> menu_;
    std::string keyEquivalent_;
    NSEvent::ModifierFlags modifiers_ = NSEvent::ModifierFlags::control;
    std::shared_ptr<NSImage> image_;
    bool isSeparator_ = false;
    bool isEnabled_ = true;
    bool state_ = false;
};

/// A list of commands. Without a host nothing opens. Main thread only.
class NSMenu : public std::enable_shared_from_this<NSMenu> {
    struct Key {};

public:
    /// Without items.
    static std::shared_ptr<NSMenu> create(std::string title = {});
    /// For `create`.
    NSMenu(Key, std::string title) : title_(std::move(title)) {}

    /// What the menu is called; empty unless given.
    const std::string& title() const noexcept { return title_; }
    /// From the top down.
    const std::vector<std::shared_ptr<NSMenuItem>>& itemArray() const noexcept { return items_; }
    /// Separators count too.
    std::int64_t numberOfItems() const noexcept { return static_cast<std::int64_t>(items_.size()); }
    /// Null when there is none.
    std::shared_ptr<NSMenuItem> item(std::int64_t at) const noexcept;
    /// -1 when the item stands elsewhere.
    std::int64_t index(const NSMenuItem& ofItem) const noexcept;

    /// At the end. An item that stands in a menu already stops the program.
    void addItem(const std::shared_ptr<NSMenuItem>& item);
    /// The items may then stand in another menu.
    void removeAllItems();

    /// Sends the item's action with the item as its sender, as a click on it does. False when there
    /// is no such item, when it is disabled or has no action, and when nothing performed it.
    bool performActionForItem(std::int64_t at);

    /// Performs the first enabled item, of this menu or of those inside, that has the key of the
    /// event. False when there is none.
    bool performKeyEquivalent(const NSEvent& with);

    /// Asks the host to open the menu at the mouse.
    void popUp();
    /// What opens the menus of the application; empty for nothing.
    static void setHost(std::function<void(NSMenu&)> host);

private:
    bool performKeyEquivalent(const NSEvent& with, int depth);

    std::string title_;
    std::vector<std::shared_ptr<NSMenuItem>> items_;
};

} // namespace zorvan
