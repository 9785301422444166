#pragma once

#include <zorvan/platform/appkit/NSView.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace zorvan {

/// Its subviews side by side, or one below the other, with dividers between them that can be moved.
/// Another size goes to the last subview.
class NSSplitView : public NSView {
public:
    /// Without subviews.
    static std::shared_ptr<NSSplitView> create(const CGRect& frame = {});
    /// For `create`.
    using NSView::NSView;

    /// Whether the dividers are vertical, the subviews from left to right; else they go from the
    /// top down. True unless set.
    /// @{
    bool isVertical() const noexcept { return isVertical_; }
    void setVertical(bool vertical);
    /// @}
    /// In points.
    double dividerThickness() const noexcept { return 1; }
    /// One less than there are subviews.
    std::int64_t numberOfDividers() const noexcept;

    /// Where a divider begins, from the left or the top edge; absent when there is no such divider.
    /// While there is no room for where it was set, it gives way to the least lengths behind it, as
    /// far as the one before it lets it.
    std::optional<double> position(std::int64_t ofDividerAt) const;
    /// Held between the dividers beside it, and where it leaves the subviews beside it their least
    /// lengths; a collapsible one goes to nothing beyond half of that. Nothing for a divider that
    /// there is not.
    void setPosition(double position, std::int64_t ofDividerAt);

    /// In points; 0 unless set.
    double minimumLength(std::int64_t ofSubviewAt) const;
    /// Counts from the next layout, or the next time that a divider is moved.
    void setMinimumLength(double length, std::int64_t ofSubviewAt);
    /// Whether the subview may go to nothing although it has a least length. False unless set.
    /// @{
    bool isCollapsible(std::int64_t subviewAt) const;
    void setCollapsible(bool collapsible, std::int64_t subviewAt);
    /// @}

    void layout() override;
    void draw(Canvas& canvas) const override;

    // A press on a divider takes hold of it.

    std::shared_ptr<NSView> hitTest(CGPoint point) override;
    void mouseDown(const NSEvent& with) override;
    void mouseDragged(const NSEvent& with) override;
    void mouseUp(const NSEvent& with) override;

private:
    struct Limits {
        double minimum = 0;
        bool isCollapsible = false;
    };

    double length() const;
    double leastLength(std::size_t ofSubviewAt) const;
    std::vector<double> places() const;
    double held(double position, std::int64_t divider, double least, double most) const;
    Limits limits(std::int64_t subview) const;
    void setLimits(Limits limits, std::int64_t subview);
    CGRect stretch(double start, double extent) const;
    double along(CGPoint point) const;
    std::optional<std::int64_t> dividerNear(CGPoint point) const;
    void bringUpToDate();

    /// Where each divider was set; grows as subviews come.
    std::vector<double> positions_;
    std::vector<Limits> limits_;
    std::optional<std::int64_t> held_;
    bool isVertical_ = true;
};

} // namespace zorvan
