#pragma once

#include <zorvan/interface/NSMenu.h>
#include <zorvan/interface/NSSearchField.h>
#include <zorvan/interface/NSSplitView.h>
#include <zorvan/interface/NSToolbarItemGroup.h>
#include <zorvan/interface/Selector.h>
#include <zorvan/numbers-geometry/CGSize.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zorvan {

// What the builders of dynamic toolbar items are told. Every field is absent at first; an absent
// identifier becomes a random one, an absent name the empty one, an absent image size 19 x 19.

/// Of a button with an image.
struct ImageButtonSettings {
    std::optional<NSToolbarItemIdentifier> identifier;
    std::optional<std::string> displayName;
    std::optional<bool> isNavigational;
    /// Of a system symbol or else of a named image of the application.
    std::optional<std::string> imageName;
    std::optional<CGSize> imageSize;
    std::optional<Selector> action;
    std::weak_ptr<void> target;
};

/// Of a search field; one is made where none is given.
struct SearchFieldSettings {
    std::optional<NSToolbarItemIdentifier> identifier;
    std::optional<std::string> displayName;
    std::shared_ptr<NSSearchField> searchField;
    std::optional<std::string> placeholderString;
    std::optional<Selector> action;
    std::weak_ptr<void> target;
};

/// Of a button that opens a menu.
struct MenuButtonSettings {
    std::optional<NSToolbarItemIdentifier> identifier;
    std::optional<std::string> displayName;
    std::optional<bool> isNavigational;
    std::optional<std::string> imageName;
    std::optional<CGSize> imageSize;
    std::shared_ptr<NSMenu> menu;
    std::optional<bool> showsIndicator;
};

/// Of a separator that follows a divider of a split view; one is made where none is given.
struct SplitViewSettings {
    std::optional<NSToolbarItemIdentifier> identifier;
    std::shared_ptr<NSSplitView> splitView;
    std::optional<std::int64_t> index;
};

/// Of a group of buttons, by images or by titles.
struct ButtonGroupSettings {
    std::optional<NSToolbarItemIdentifier> identifier;
    std::optional<std::string> displayName;
    std::optional<bool> isNavigational;
    std::optional<std::vector<std::shared_ptr<NSToolbarItem>>> subitems;
    std::optional<std::vector<std::string>> imageNames;
    std::optional<CGSize> imageSize;
    std::optional<std::vector<std::string>> titles;
    std::optional<std::int64_t> selectedIndex;
    std::optional<NSToolbarItemGroup::SelectionMode> selectionMode;
    std::optional<NSToolbarItemGroup::ControlRepresentation> controlRepresentation;
    std::optional<Selector> action;
    std::weak_ptr<void> target;
};

} // namespace zorvan
