#pragma once

#include <zorvan/interface/NSToolbarItem.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zorvan {

class NSToolbar;
class NSWindow;

/// Gives a toolbar its items.
class NSToolbarDelegate {
public:
    virtual ~NSToolbarDelegate() = default;
    /// What to insert for an identifier; null when there is no such item.
    virtual std::shared_ptr<NSToolbarItem>
    toolbarItemForItemIdentifier(NSToolbar& toolbar, const NSToolbarItemIdentifier& identifier,
                                 bool willBeInsertedIntoToolbar) = 0;
    /// The items that an unedited toolbar shows, in order.
    virtual std::vector<NSToolbarItemIdentifier>
    toolbarDefaultItemIdentifiers(NSToolbar& toolbar) = 0;
    /// Those that people may choose from.
    virtual std::vector<NSToolbarItemIdentifier>
    toolbarAllowedItemIdentifiers(NSToolbar& toolbar) = 0;
    /// Those that stay chosen once pressed; none unless overridden.
    virtual std::vector<NSToolbarItemIdentifier>
    toolbarSelectableItemIdentifiers(NSToolbar& toolbar);
};

/// The row of items at the top of a window.
///
/// It asks its delegate, which it does not keep alive, for each item that is inserted, and makes
/// the spaces itself when the delegate gives none. A toolbar that comes into a window before
/// anything was inserted or removed shows its default items. Main thread only.
class NSToolbar : public std::enable_shared_from_this<NSToolbar> {
protected:
    /// What only toolbars can name, so that they are made by `create`.
    struct Key {};

public:
    /// Whether items show their images, their labels or both.
    enum class DisplayMode : std::int64_t {
        default_ = 0,
        iconAndLabel = 1,
        iconOnly = 2,
        labelOnly = 3,
    };

    /// Without items.
    static std::shared_ptr<NSToolbar> create(std::string identifier);
    /// For `create`.
    NSToolbar(Key, std::string identifier) : identifier_(std::move(identifier)) {}
    virtual ~NSToolbar() = default;
    NSToolbar(const NSToolbar&) = delete;
    NSToolbar& operator=(const NSToolbar&) = delete;

    /// What tells it from other toolbars.
    const std::string& identifier() const noexcept { return identifier_; }
    /// Whom it asks for items; null for none, and once it has gone.
    /// @{
    std::shared_ptr<NSToolbarDelegate> delegate() const noexcept { return delegate_.lock(); }
    void setDelegate(const std::shared_ptr<NSToolbarDelegate>& delegate) { delegate_ = delegate; }
    /// @}
    /// For a host that lets people arrange the items; false unless set.
    /// @{
    bool autosavesConfiguration() const noexcept { return autosavesConfiguration_; }
    void setAutosavesConfiguration(bool autosaves) { change(autosavesConfiguration_, autosaves); }
    bool allowsUserCustomization() const noexcept { return allowsUserCustomization_; }
    void setAllowsUserCustomization(bool allows) { change(allowsUserCustomization_, allows); }
    /// @}
    /// A line below the toolbar.
    /// @{
    bool showsBaselineSeparator() const noexcept { return showsBaselineSeparator_; }
    void setShowsBaselineSeparator(bool shows) { change(showsBaselineSeparator_, shows); }
    /// @}
    /// `default_` unless set, which a host shows as it likes.
    /// @{
    DisplayMode displayMode() const noexcept { return displayMode_; }
    void setDisplayMode(DisplayMode mode) { change(displayMode_, mode); }
    /// @}

    /// In order.
    const std::vector<std::shared_ptr<NSToolbarItem>>& items() const noexcept { return items_; }
    /// The identifiers of the items, in order.
    std::vector<NSToolbarItemIdentifier> itemIdentifiers() const;
    /// Asks the delegate for the item. Nothing is inserted when there is none; a position beyond
    /// the end is the end, one below 0 stops the program.
    void insertItem(const NSToolbarItemIdentifier& withItemIdentifier, std::int64_t at);
    /// Stops the program when there is no such item.
    void removeItem(std::int64_t at);

    /// Of the menus and views of its items; false when none takes it.
    bool performKeyEquivalent(const NSEvent& with);

    /// The window that shows the toolbar; null for none.
    std::shared_ptr<NSWindow> window() const noexcept { return window_.lock(); }
    /// From now on the default items are not shown by themselves.
    void forgoDefaultItems() noexcept { showsDefaultItems_ = false; }

private:
    friend class NSWindow;
    friend class NSToolbarItem;

    void comeInto(const std::shared_ptr<NSWindow>& window);
    std::shared_ptr<NSToolbarItem> makeItem(const NSToolbarItemIdentifier& identifier);
    void didChange();
    template <class Property>
    void change(Property& property, Property value) {
        property = value;
        didChange();
    }

    std::string identifier_;
    std::weak_ptr<NSToolbarDelegate> delegate_;
    std::vector<std::shared_ptr<NSToolbarItem>> items_;
    std::weak_ptr<NSWindow> window_;
    DisplayMode displayMode_ = DisplayMode::default_;
    bool autosavesConfiguration_ = false;
    bool allowsUserCustomization_ = false;
    bool showsBaselineSeparator_ = true;
    bool showsDefaultItems_ = true;
};

} // namespace zorvan
