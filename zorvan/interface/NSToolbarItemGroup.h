#pragma once

#include <zorvan/interface/NSToolbarItem.h>

#include <cstdint>
#include <vector>

namespace zorvan {

/// Several toolbar items shown as one control, of which the user picks.
class NSToolbarItemGroup : public NSToolbarItem {
public:
    enum class SelectionMode : std::int64_t { selectOne = 0, selectAny = 1, momentary = 2 };
    enum class ControlRepresentation : std::int64_t { automatic = 0, expanded = 1, collapsed = 2 };

    struct Images {
        NSToolbarItemIdentifier itemIdentifier;
        std::vector<std::shared_ptr<NSImage>> images;
        SelectionMode selectionMode = SelectionMode::selectOne;
        std::vector<std::string> labels = {};
        std::weak_ptr<void> target = {};
        std::optional<Selector> action = {};
    };
    struct Titles {
        NSToolbarItemIdentifier itemIdentifier;
        std::vector<std::string> titles;
        SelectionMode selectionMode = SelectionMode::selectOne;
        std::vector<std::string> labels = {};
        std::weak_ptr<void> target = {};
        std::optional<Selector> action = {};
    };
    /// One subitem for each image or title; labels beyond them are left out. A subitem without
    /// label has its title for one. The action is sent
    /// with the group as its sender.
    static std::shared_ptr<NSToolbarItemGroup> create(Images group);
    static std::shared_ptr<NSToolbarItemGroup> create(Titles group);
    using NSToolbarItem::NSToolbarItem;

    const std::vector<std::shared_ptr<NSToolbarItem>>& subitems() const noexcept {
        return subitems_;
    }
    /// Nothing stays selected.
    void setSubitems(std::vector<std::shared_ptr<NSToolbarItem>> subitems);
    SelectionMode selectionMode() const noexcept { return selectionMode_; }
    void setSelectionMode(SelectionMode mode);
    ControlRepresentation controlRepresentation() const noexcept { return representation_; }
    /// Collapsed, a group shows the selected subitem alone.
    void setControlRepresentation(ControlRepresentation representation);

    /// The first selected subitem, or -1.
    std::int64_t selectedIndex() const noexcept;
    /// Selects that subitem alone; an index that is none leaves none selected.
    void setSelectedIndex(std::int64_t index);
    bool isSelected(std::int64_t at) const noexcept;
    void setSelected(bool selected, std::int64_t at);

    /// As a press on the subitem does: changes the selection as the mode says, then sends the
    /// subitem's own action, or the group's when it has none.
    void press(std::int64_t at);

private:
    bool has(std::int64_t index) const noexcept {
        return index >= 0 && index < static_cast<std::int64_t>(subitems_.size());
    }

    std::vector<std::shared_ptr<NSToolbarItem>> subitems_;
    std::vector<bool> selected_;
    SelectionMode selectionMode_ = SelectionMode::selectOne;
    ControlRepresentation representation_ = ControlRepresentation::automatic;
};

} // namespace zorvan
