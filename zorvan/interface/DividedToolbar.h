#pragma once

#include <zorvan/interface/NSToolbar.h>
#include <zorvan/platform/foundation/NameLiteral.h>

#include <memory>
#include <string>
#include <string_view>

namespace zorvan {

/// A toolbar of three views, at the left, in the middle and at the right.
///
/// The views are shown and hidden by `showLeftItemView` and its like: a view that is not to be
/// shown is hidden and keeps its place, so that the others do not move.
class DividedToolbar : public NSToolbar, public NSToolbarDelegate {
public:
    /// The identifiers of the three items.
    /// @{
    static constexpr NameLiteral leftItemIdentifier = "LeftToolbarItem";
    static constexpr NameLiteral centerItemIdentifier = "CenterToolbarItem";
    static constexpr NameLiteral rightItemIdentifier = "RightToolbarItem";
    /// @}

    /// A toolbar of three empty views, which no window shows yet.
    static std::shared_ptr<DividedToolbar> create(std::string identifier = "DividedToolbar");
    /// For `create`.
    using NSToolbar::NSToolbar;

    /// Whether the view is shown: as its `isHidden` says, so true unless set.
    /// @{
    bool showLeftItemView() const noexcept { return !leftItemView_->isHidden(); }
    void setShowLeftItemView(bool show) { leftItemView_->setHidden(!show); }
    bool showCenterItemView() const noexcept { return !centerItemView_->isHidden(); }
    void setShowCenterItemView(bool show) { centerItemView_->setHidden(!show); }
    bool showRightItemView() const noexcept { return !rightItemView_->isHidden(); }
    void setShowRightItemView(bool show) { rightItemView_->setHidden(!show); }
    /// @}

    /// 80 x 32 points each, to put views into, or to be replaced by others; a new, empty one for
    /// null. A view that is set is shown or hidden as it is.
    /// @{
    const std::shared_ptr<NSView>& leftItemView() const noexcept { return leftItemView_; }
    void setLeftItemView(std::shared_ptr<NSView> view);
    const std::shared_ptr<NSView>& centerItemView() const noexcept { return centerItemView_; }
    void setCenterItemView(std::shared_ptr<NSView> view);
    const std::shared_ptr<NSView>& rightItemView() const noexcept { return rightItemView_; }
    void setRightItemView(std::shared_ptr<NSView> view);
    /// @}

    /// The item that shows the view; made when first asked for.
    /// @{
    const std::shared_ptr<NSToolbarItem>& leftToolbarItem();
    const std::shared_ptr<NSToolbarItem>& centerToolbarItem();
    const std::shared_ptr<NSToolbarItem>& rightToolbarItem();
    /// @}

    // As its own delegate.

    std::shared_ptr<NSToolbarItem>
    toolbarItemForItemIdentifier(NSToolbar& toolbar, const NSToolbarItemIdentifier& identifier,
                                 bool willBeInsertedIntoToolbar) override;
    std::vector<NSToolbarItemIdentifier> toolbarDefaultItemIdentifiers(NSToolbar& toolbar) override;
    std::vector<NSToolbarItemIdentifier> toolbarAllowedItemIdentifiers(NSToolbar& toolbar) override;

private:
    static std::shared_ptr<NSView> emptyView() { return NSView::create({0, 0, 80, 32}); }

    std::shared_ptr<NSView> leftItemView_ = emptyView();
    std::shared_ptr<NSView> centerItemView_ = emptyView();
    std::shared_ptr<NSView> rightItemView_ = emptyView();
    std::shared_ptr<NSToolbarItem> leftToolbarItem_;
    std::shared_ptr<NSToolbarItem> centerToolbarItem_;
    std::shared_ptr<NSToolbarItem> rightToolbarItem_;
};

} // namespace zorvan
