#pragma once

#include <zorvan/interface/DynamicToolbarItem.h>
#include <zorvan/interface/DynamicToolbarSettings.h>
#include <zorvan/interface/NSButton.h>
#include <zorvan/interface/NSMenuToolbarItem.h>
#include <zorvan/interface/NSSearchToolbarItem.h>
#include <zorvan/interface/NSToolbarItemGroup.h>
#include <zorvan/platform/foundation/Required.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zorvan {

/// Anything that toolbar items can be added to, with the builders of such items.
///
/// Each builder makes one item, adds it and returns what it shows. One that takes an `update` has
/// it called on every reload of the set, with the item and with what it shows. A `create...`
/// callable fills in the settings, all of which are absent when it is called.
class DynamicToolbarItemContainer {
public:
    virtual ~DynamicToolbarItemContainer() = default;

    /// Appends the item, and returns it.
    virtual std::shared_ptr<DynamicToolbarItem>
    addItem(const std::shared_ptr<DynamicToolbarItem>& item) = 0;

    /// What is called on a reload, with the item and what it shows.
    template <class Control>
    using ControlUpdate = std::function<void(DynamicToolbarItem&, Control&)>;

    /// An item that the toolbar makes itself.
    struct IdentifierOnly {
        /// Of the item.
        Required<NSToolbarItemIdentifier> identifier;
    };
    /// An item that shows a view.
    template <class View>
    struct ViewItem {
        /// A random one when absent.
        std::optional<NSToolbarItemIdentifier> identifier = {};
        /// Whether the item stands before all others; false when absent.
        std::optional<bool> isNavigational = {};
        /// Label and tool tip of the item; empty when absent.
        std::optional<std::string> displayName = {};
        /// Gives the view, once. An item without one is made for null, and not updated.
        Required<std::function<std::shared_ptr<View>()>> createView;
        /// Empty for nothing.
        ControlUpdate<View> update = {};
    };
    /// A button with an image.
    struct ImageButton {
        /// Fills in what the button is.
        Required<std::function<void(ImageButtonSettings&)>> createImageButton;
        /// Empty for nothing.
        ControlUpdate<NSButton> update = {};
    };
    /// A search field.
    struct SearchField {
        /// Fills in what the field is.
        Required<std::function<void(SearchFieldSettings&)>> createSearchField;
        /// Empty for nothing.
        ControlUpdate<NSSearchField> update = {};
    };
    /// A separator that follows a divider.
    struct SplitView {
        /// Fills in which divider.
        Required<std::function<void(SplitViewSettings&)>> createSplitView;
    };
    /// A group of buttons with images.
    struct ImageGroup {
        /// Fills in what the group is.
        Required<std::function<void(ButtonGroupSettings&)>> createImageGroup;
        /// Empty for nothing.
        ControlUpdate<NSToolbarItemGroup> update = {};
    };
    /// A group of buttons with titles.
    struct TitleGroup {
        /// Fills in what the group is.
        Required<std::function<void(ButtonGroupSettings&)>> createTitleGroup;
        /// Empty for nothing.
        ControlUpdate<NSToolbarItemGroup> update = {};
    };
    /// A button that opens a menu.
    struct MenuButton {
        /// Fills in what the button is.
        Required<std::function<void(MenuButtonSettings&)>> createMenuButton;
        /// Empty for nothing.
        ControlUpdate<NSMenuToolbarItem> update = {};
    };

    /// An item that the toolbar makes itself, a space for example.
    std::shared_ptr<DynamicToolbarItem> addItem(const IdentifierOnly& settings);
    /// Any view: `addItem<NSSlider>({.createView = [] { return NSSlider::create(); }})`.
    template <class View = NSView>
    std::shared_ptr<View> addItem(const ViewItem<View>& settings);
    /// A button with a textured bezel.
    std::shared_ptr<NSButton> addItem(const ImageButton& settings);
    /// The given field, or a new one.
    std::shared_ptr<NSSearchField> addItem(const SearchField& settings);
    /// The given split view, or a new one, which is not put anywhere.
    std::shared_ptr<NSSplitView> addItem(const SplitView& settings);
    /// Images that cannot be found are skipped, and their titles with them.
    std::shared_ptr<NSToolbarItemGroup> addItem(const ImageGroup& settings);
    /// One button for each title, the first of `selectedIndex` selected.
    std::shared_ptr<NSToolbarItemGroup> addItem(const TitleGroup& settings);
    /// Its item, which opens the given menu or an empty one.
    std::shared_ptr<NSMenuToolbarItem> addItem(const MenuButton& settings);

private:
    template <class Control>
    void add(const std::shared_ptr<NSToolbarItem>& shown, const std::shared_ptr<Control>& control,
             const ControlUpdate<Control>& update);
    static std::shared_ptr<NSToolbarItem>
    makePlainItem(const std::optional<NSToolbarItemIdentifier>& identifier,
                  const std::optional<bool>& isNavigational,
                  const std::optional<std::string>& displayName,
                  const std::shared_ptr<NSView>& view);
    std::shared_ptr<NSToolbarItemGroup> addGroup(const std::shared_ptr<NSToolbarItemGroup>& group,
                                                 const ButtonGroupSettings& settings,
                                                 const ControlUpdate<NSToolbarItemGroup>& update);
};

template <class Control>
void DynamicToolbarItemContainer::add(const std::shared_ptr<NSToolbarItem>& shown,
                                      const std::shared_ptr<Control>& control,
                                      const ControlUpdate<Control>& update) {
    const auto item = DynamicToolbarItem::create(shown->itemIdentifier());
    item->setItem(shown);
    if (update)
        item->setUpdate(
            [control, update](DynamicToolbarItem& updated) { update(updated, *control); });
    addItem(item);
}

template <class View>
std::shared_ptr<View> DynamicToolbarItemContainer::addItem(const ViewItem<View>& settings) {
    const std::shared_ptr<View> view = settings.createView.value();
    add(makePlainItem(settings.identifier, settings.isNavigational, settings.displayName, view),
        view, view ? settings.update : nullptr);
    return view;
}

} // namespace zorvan
