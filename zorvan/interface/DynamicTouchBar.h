#pragma once

#include <zorvan/interface/DynamicBar.h>
#include <zorvan/interface/DynamicTouchBarItemSet.h>
#include <zorvan/interface/NSTouchBar.h>

#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

/// A touch bar whose items change with the state of the application: the first set whose predicate
/// is true is shown. Main thread only.
class DynamicTouchBar : public DynamicBar<NSTouchBarItem, DynamicTouchBarItemContainer>,
                        public NSTouchBarDelegate,
                        public std::enable_shared_from_this<DynamicTouchBar> {
    struct Key {};

public:
    /// Without sets.
    static std::shared_ptr<DynamicTouchBar> create();
    /// For `create`.
    explicit DynamicTouchBar(Key) : touchBar_(NSTouchBar::create()) {}

    /// The touch bar, whose delegate this is.
    const std::shared_ptr<NSTouchBar>& touchBar() const noexcept { return touchBar_; }
    /// Chooses a set, updates its items, and gives the touch bar the identifiers of those to show,
    /// changed or not. What is called may change the sets, as with a dynamic toolbar.
    void reloadDisplayedItems();

    /// The item of the displayed set; null when there is none.
    std::shared_ptr<NSTouchBarItem> makeItem(const NSTouchBarItemIdentifier& identifier) const {
        return shownItem(identifier);
    }

    // As the delegate of its touch bar.
    std::shared_ptr<NSTouchBarItem>
    touchBarMakeItemForIdentifier(NSTouchBar& touchBar,
                                  const NSTouchBarItemIdentifier& identifier) override;

private:
    void showItems(std::vector<std::string> identifiers) override;

    std::shared_ptr<NSTouchBar> touchBar_;
};

} // namespace zorvan
