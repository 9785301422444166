#pragma once

#include <zorvan/interface/NSToolbarItem.h>

#include <cstdint>
#include <vector>

namespace zorvan {

/// Several toolbar items shown as one control, of which the user picks.
class NSToolbarItemGroup : public NSToolbarItem {
public:
    /// What a press selects: that subitem alone, that one besides or no longer, or nothing.
    enum class SelectionMode : std::int64_t { selectOne = 0, selectAny = 1, momentary = 2 };
    /// How much of the group is shown: as a host likes, all subitems, or the selected one.
    enum class ControlRepresentation : std::int64_t { automatic = 0, expanded = 1, collapsed = 2 };

    /// A group of images.
    struct Images {
        /// Of the group.
        NSToolbarItemIdentifier itemIdentifier;
        /// One for each subitem.
        std::vector<std::shared_ptr<NSImage>> images;
        /// What a press selects.
        SelectionMode selectionMode = SelectionMode::selectOne;
        /// Of the subitems, in order; those without one have none.
        std::vector<std::string> labels = {};
        /// Whom the action is sent to; not kept alive.
        std::weak_ptr<void> target = {};
        /// What a press sends; absent for nothing.
        std::optional<Selector> action = {};
    };
    /// A group of titles.
    struct Titles {
        /// Of the group.
        NSToolbarItemIdentifier itemIdentifier;
        /// One for each subitem.
        std::vector<std::string> titles;
        /// What a press selects.
        SelectionMode selectionMode = SelectionMode::selectOne;
        /// Of the subitems, in order; those without one have their titles.
        std::vector<std::string> labels = {};
        /// Whom the action is sent to; not kept alive.
        std::weak_ptr<void> target = {};
        /// What a press sends; absent for nothing.
        std::optional<Selector> action = {};
    };
    /// One subitem for each image or title; labels beyond them are left out. A subitem without
    /// label has its title for one. The action is sent
    /// with the group as its sender.
    /// @{
    static std::shared_ptr<NSToolbarItemGroup> create(Images group);
    static std::shared_ptr<NSToolbarItemGroup> create(Titles group);
    /// @}
    /// For `create`.
    using NSToolbarItem::NSToolbarItem;

    /// In order.
    const std::vector<std::shared_ptr<NSToolbarItem>>& subitems() const noexcept {
        return subitems_;
    }
    /// Nothing stays selected.
    void setSubitems(std::vector<std::shared_ptr<NSToolbarItem>> subitems);
    /// What a press selects. `selectOne` keeps the first selected subitem alone.
    /// @{
    SelectionMode selectionMode() const noexcept { return selectionMode_; }
    void setSelectionMode(SelectionMode mode);
    /// @}
    /// `automatic` unless set.
    ControlRepresentation controlRepresentation() const noexcept { return representation_; }
    /// Collapsed, a group shows the selected subitem alone.
    void setControlRepresentation(ControlRepresentation representation) {
        change(representation_, representation);
    }

    /// The first selected subitem, or -1.
    std::int64_t selectedIndex() const noexcept;
    /// Selects that subitem alone; an index that is none leaves none selected.
    void setSelectedIndex(std::int64_t index);
    /// False where there is no subitem.
    bool isSelected(std::int64_t at) const noexcept;
    /// Selecting one takes the selection from the others, but for `selectAny`. Nothing where there
    /// is no subitem.
    void setSelected(bool selected, std::int64_t at);

    /// As a press on the subitem does: changes the selection as the mode says, then sends the
    /// subitem's own action, or the group's when it has none.
    void press(std::int64_t at);

private:
    template <class Settings>
    static std::shared_ptr<NSToolbarItemGroup>
    made(const Settings& group, std::vector<std::shared_ptr<NSToolbarItem>> subitems);
    bool has(std::int64_t index) const noexcept {
        return index >= 0 && index < static_cast<std::int64_t>(subitems_.size());
    }

    std::vector<std::shared_ptr<NSToolbarItem>> subitems_;
    std::vector<bool> selected_;
    SelectionMode selectionMode_ = SelectionMode::selectOne;
    ControlRepresentation representation_ = ControlRepresentation::automatic;
};

} // namespace zorvan
