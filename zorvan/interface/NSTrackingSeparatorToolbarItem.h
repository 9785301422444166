#pragma once

#include <zorvan/interface/NSSplitView.h>
#include <zorvan/interface/NSToolbarItem.h>

#include <cstdint>

namespace zorvan {

/// A line in a toolbar that stands above a divider of a split view, and moves with it.
class NSTrackingSeparatorToolbarItem : public NSToolbarItem {
public:
    /// Above the divider of that index, from 0 on.
    static std::shared_ptr<NSTrackingSeparatorToolbarItem>
    create(NSToolbarItemIdentifier itemIdentifier, std::shared_ptr<NSSplitView> splitView,
           std::int64_t dividerIndex);
    /// For `create`.
    using NSToolbarItem::NSToolbarItem;

    /// Null when it was made without one.
    const std::shared_ptr<NSSplitView>& splitView() const noexcept { return splitView_; }
    /// As it was made with; there may be no such divider.
    std::int64_t dividerIndex() const noexcept { return dividerIndex_; }

    /// Where the divider stands, in the coordinates of the window; absent when the split view has
    /// no such divider or is not in a window.
    std::optional<double> dividerPosition() const;

private:
    std::shared_ptr<NSSplitView> splitView_;
    std::int64_t dividerIndex_ = 0;
};

} // namespace zorvan
