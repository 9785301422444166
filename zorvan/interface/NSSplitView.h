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
    static std::shared_ptr<NSSplitView> create(const CGRect& frame = {}) {
        return std::make_shared<NSSplitView>(Key{}, frame);
    }
    using NSView::NSView;

    /// Whether the dividers are vertical, the subviews from left to right; else they go from the
    /// top down. True unless set.
    bool isVertical() const noexcept { return isVertical_; }
    void setVertical(bool vertical);
    /// In points.
    double dividerThickness() const noexcept { return 1; }
    std::int64_t numberOfDividers() const noexcept;

    /// Where a divider begins, from the left or the top edge; absent when there is no such divider.
    std::optional<double> position(std::int64_t ofDividerAt) const;
    /// Held between the dividers beside it. Nothing for a divider that there is not.
    void setPosition(double position, std::int64_t ofDividerAt);

    void layout() override;
    void draw(Canvas& canvas) const override;

    // A press on a divider takes hold of it.

    std::shared_ptr<NSView> hitTest(CGPoint point) override;
    void mouseDown(const NSEvent& with) override;
    void mouseDragged(const NSEvent& with) override;
    void mouseUp(const NSEvent& with) override;

private:
    double length() const;
    double along(CGPoint point) const;
    std::optional<std::int64_t> dividerNear(CGPoint point) const;
    void bringUpToDate();

    /// One for each divider; grows as subviews come.
    std::vector<double> positions_;
    std::optional<std::int64_t> held_;
    bool isVertical_ = true;
};

} // namespace zorvan
