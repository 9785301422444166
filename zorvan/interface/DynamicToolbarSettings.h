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
    /// Of the item.
    std::optional<NSToolbarItemIdentifier> identifier;
    /// Label and tool tip of the item.
    std::optional<std::string> displayName;
    /// Whether the item stands before all others; false when absent.
    std::optional<bool> isNavigational;
    /// Of a system symbol or else of a named image of the application.
    std::optional<std::string> imageName;
    /// In points.
    std::optional<CGSize> imageSize;
    /// What a press sends; absent for nothing.
    std::optional<Selector> action;
    /// To whom; not kept alive.
    std::weak_ptr<void> target;
};

/// Of a search field; one is made where none is given.
struct SearchFieldSettings {
    /// Of the item.
    std::optional<NSToolbarItemIdentifier> identifier;
    /// Not used: a search item has no label.
    std::optional<std::string> displayName;
    /// Null for a new one.
    std::shared_ptr<NSSearchField> searchField;
    /// Shown while the field is empty.
    std::optional<std::string> placeholderString;
    /// What is sent when the text has been changed; absent for nothing.
    std::optional<Selector> action;
    /// To whom; not kept alive.
    std::weak_ptr<void> target;
};

/// Of a button that opens a menu.
struct MenuButtonSettings {
    /// Of the item.
    std::optional<NSToolbarItemIdentifier> identifier;
    /// Label and tool tip of the item.
    std::optional<std::string> displayName;
    /// Whether the item stands before all others; false when absent.
    std::optional<bool> isNavigational;
    /// Of a system symbol or else of a named image of the application.
    std::optional<std::string> imageName;
    /// In points.
    std::optional<CGSize> imageSize;
    /// What opens; null for an empty one.
    std::shared_ptr<NSMenu> menu;
    /// Whether a mark shows that there is a menu; true when absent.
    std::optional<bool> showsIndicator;
};

/// Of a separator that follows a divider of a split view; one is made where none is given.
struct SplitViewSettings {
    /// Of the item.
    std::optional<NSToolbarItemIdentifier> identifier;
    /// Null for a new one.
    std::shared_ptr<NSSplitView> splitView;
    /// Of the divider; 0 when absent.
    std::optional<std::int64_t> index;
};

/// Of a group of buttons, by images or by titles.
struct ButtonGroupSettings {
    /// Of the group.
    std::optional<NSToolbarItemIdentifier> identifier;
    /// Label and tool tip of the group.
    std::optional<std::string> displayName;
    /// Whether the group stands before all others; false when absent.
    std::optional<bool> isNavigational;
    /// These instead of those of the images or titles.
    std::optional<std::vector<std::shared_ptr<NSToolbarItem>>> subitems;
    /// Of system symbols or else of named images of the application; for a group by images.
    std::optional<std::vector<std::string>> imageNames;
    /// Of each image, in points.
    std::optional<CGSize> imageSize;
    /// Of a group by titles, one for each button; of one by images, the labels.
    std::optional<std::vector<std::string>> titles;
    /// Counts for a group by titles alone; none is selected when absent.
    std::optional<std::int64_t> selectedIndex;
    /// How many may be selected; one when absent.
    std::optional<NSToolbarItemGroup::SelectionMode> selectionMode;
    /// Automatic when absent.
    std::optional<NSToolbarItemGroup::ControlRepresentation> controlRepresentation;
    /// What a press sends unless the subitem has an action; absent for nothing.
    std::optional<Selector> action;
    /// To whom; not kept alive.
    std::weak_ptr<void> target;
};

} // namespace zorvan
