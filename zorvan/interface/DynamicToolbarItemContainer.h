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

    template <class Control>
    using ControlUpdate = std::function<void(DynamicToolbarItem&, Control&)>;

    struct IdentifierOnly {
        Required<NSToolbarItemIdentifier> identifier;
    };
    template <class View>
    struct ViewItem {
        std::optional<NSToolbarItemIdentifier> identifier = {};
        std::optional<bool> isNavigational = {};
        std::optional<std::string> displayName = {};
        Required<std::function<std::shared_ptr<View>()>> createView;
        ControlUpdate<View> update = {};
    };
    struct ImageButton {
        Required<std::function<void(ImageButtonSettings&)>> createImageButton;
        ControlUpdate<NSButton> update = {};
    };
    struct SearchField {
        Required<std::function<void(SearchFieldSettings&)>> createSearchField;
        ControlUpdate<NSSearchField> update = {};
    };
    struct SplitView {
        Required<std::function<void(SplitViewSettings&)>> createSplitView;
    };
    struct ImageGroup {
        Required<std::function<void(ButtonGroupSettings&)>> createImageGroup;
        ControlUpdate<NSToolbarItemGroup> update = {};
    };
    struct TitleGroup {
        Required<std::function<void(ButtonGroupSettings&)>> createTitleGroup;
        ControlUpdate<NSToolbarItemGroup> update = {};
    };
    struct MenuButton {
        Required<std::function<void(MenuButtonSettings&)>> createMenuButton;
        ControlUpdate<NSMenuToolbarItem> update = {};
    };

    /// An item that the toolbar makes itself, a space for example.
    std::shared_ptr<DynamicToolbarItem> addItem(const IdentifierOnly& settings);
    /// Any view: `addItem<NSSlider>({.createView = [] { return NSSlider::create(); }})`.
    template <class View = NSView>
    std::shared_ptr<View> addItem(const ViewItem<View>& settings);
    std::shared_ptr<NSButton> addItem(const ImageButton& settings);
    std::shared_ptr<NSSearchField> addItem(const SearchField& settings);
    std::shared_ptr<NSSplitView> addItem(const SplitView& settings);
    /// Images that cannot be found are skipped, and their titles with them.
    std::shared_ptr<NSToolbarItemGroup> addItem(const ImageGroup& settings);
    std::shared_ptr<NSToolbarItemGroup> addItem(const TitleGroup& settings);
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
