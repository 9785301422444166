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
    bool showLeftItemView() const noexcept { return !left_.view->isHidden(); }
    void setShowLeftItemView(bool show) { left_.view->setHidden(!show); }
    bool showCenterItemView() const noexcept { return !center_.view->isHidden(); }
    void setShowCenterItemView(bool show) { center_.view->setHidden(!show); }
    bool showRightItemView() const noexcept { return !right_.view->isHidden(); }
    void setShowRightItemView(bool show) { right_.view->setHidden(!show); }
    /// @}

    /// 80 x 32 points each, to put views into, or to be replaced by others; a new, empty one for
    /// null. A view that is set is shown or hidden as it is.
    /// @{
    const std::shared_ptr<NSView>& leftItemView() const noexcept { return left_.view; }
    void setLeftItemView(std::shared_ptr<NSView> view) { left_.setView(std::move(view)); }
    const std::shared_ptr<NSView>& centerItemView() const noexcept { return center_.view; }
    void setCenterItemView(std::shared_ptr<NSView> view) { center_.setView(std::move(view)); }
    const std::shared_ptr<NSView>& rightItemView() const noexcept { return right_.view; }
    void setRightItemView(std::shared_ptr<NSView> view) { right_.setView(std::move(view)); }
    /// @}

    /// The item that shows the view; made when first asked for.
    /// @{
    const std::shared_ptr<NSToolbarItem>& leftToolbarItem() { return left_.madeItem(); }
    const std::shared_ptr<NSToolbarItem>& centerToolbarItem() { return center_.madeItem(); }
    const std::shared_ptr<NSToolbarItem>& rightToolbarItem() { return right_.madeItem(); }
    /// @}

    // As its own delegate.

    std::shared_ptr<NSToolbarItem>
    toolbarItemForItemIdentifier(NSToolbar& toolbar, const NSToolbarItemIdentifier& identifier,
                                 bool willBeInsertedIntoToolbar) override;
    std::vector<NSToolbarItemIdentifier> toolbarDefaultItemIdentifiers(NSToolbar& toolbar) override;
    std::vector<NSToolbarItemIdentifier> toolbarAllowedItemIdentifiers(NSToolbar& toolbar) override;

private:
    struct Part {
        NSToolbarItemIdentifier identifier;
        std::shared_ptr<NSView> view = emptyView();
        /// Null until it is asked for.
        std::shared_ptr<NSToolbarItem> item = nullptr;

        void setView(std::shared_ptr<NSView> newView);
        const std::shared_ptr<NSToolbarItem>& madeItem();
    };

    static std::shared_ptr<NSView> emptyView() { return NSView::create({0, 0, 80, 32}); }

    Part left_{NSToolbarItemIdentifier(leftItemIdentifier)};
    Part center_{NSToolbarItemIdentifier(centerItemIdentifier)};
    Part right_{NSToolbarItemIdentifier(rightItemIdentifier)};
};

} // namespace zorvan
