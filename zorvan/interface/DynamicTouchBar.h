#pragma once

#include <zorvan/interface/DynamicTouchBarItemSet.h>
#include <zorvan/interface/NSTouchBar.h>
#include <zorvan/interface/ReloadGuard.h>

#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

/// A touch bar whose items change with the state of the application: the first set whose predicate
/// is true is shown. Main thread only.
class DynamicTouchBar : public DynamicTouchBarItemContainer,
                        public NSTouchBarDelegate,
                        public std::enable_shared_from_this<DynamicTouchBar> {
public:
    /// Without sets.
    static std::shared_ptr<DynamicTouchBar> create();

    /// The touch bar, whose delegate this is.
    const std::shared_ptr<NSTouchBar>& touchBar() const noexcept { return touchBar_; }
    /// The set chosen by the last reload; null for none.
    const std::shared_ptr<DynamicTouchBarItemSet>& displayedItemSet() const noexcept {
        return displayedItemSet_;
    }
    /// The set whose items the touch bar is given when it asks. Nothing is shown anew, and the next
    /// reload chooses again.
    void setDisplayedItemSet(std::shared_ptr<DynamicTouchBarItemSet> set) {
        displayedItemSet_ = std::move(set);
    }
    /// The sets that a reload chooses from: the first that is enabled.
    /// @{
    const std::vector<std::shared_ptr<DynamicTouchBarItemSet>>& itemSets() const noexcept {
        return itemSets_;
    }
    void setItemSets(std::vector<std::shared_ptr<DynamicTouchBarItemSet>> sets) {
        itemSets_ = std::move(sets);
    }
    /// @}

    /// Appends a new set, which later items are added to. Always enabled when the predicate is
    /// empty.
    std::shared_ptr<DynamicTouchBarItemSet> addItemSet(DynamicTouchBarItemSet::Predicate isEnabled);

    using DynamicTouchBarItemContainer::addItem;
    /// Appends the item to the last set; without a set it is dropped.
    std::shared_ptr<DynamicTouchBarItem>
    addItem(const std::shared_ptr<DynamicTouchBarItem>& item) override;

    /// Chooses a set, updates its items, and gives the touch bar the identifiers of those to show,
    /// changed or not. What is called may change the sets, as with a dynamic toolbar.
    void reloadDisplayedItems();

    /// The item of the displayed set; null when there is none.
    std::shared_ptr<NSTouchBarItem> makeItem(const NSTouchBarItemIdentifier& identifier) const;

    // As the delegate of its touch bar.
    std::shared_ptr<NSTouchBarItem>
    touchBarMakeItemForIdentifier(NSTouchBar& touchBar,
                                  const NSTouchBarItemIdentifier& identifier) override;

private:
    struct Key {};

public:
    /// For `create`.
    explicit DynamicTouchBar(Key) : touchBar_(NSTouchBar::create()) {}

private:
    void reloadOnce();

    std::shared_ptr<NSTouchBar> touchBar_;
    std::shared_ptr<DynamicTouchBarItemSet> displayedItemSet_;
    std::vector<std::shared_ptr<DynamicTouchBarItemSet>> itemSets_;
    ReloadGuard reloads_;
};

} // namespace zorvan
