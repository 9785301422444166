#pragma once

#include <zorvan/interface/NSToolbarItemGroup.h>
#include <zorvan/platform/appkit/NSView.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace zorvan {

/// What a toolbar shows of a group: its subitems side by side, or the selected one alone.
class SegmentsView : public NSView {
public:
    static std::shared_ptr<SegmentsView> create(const std::shared_ptr<NSToolbarItemGroup>& group);
    using NSView::NSView;

    CGSize intrinsicContentSize() const override;
    void draw(Canvas& canvas) const override;
    void mouseDown(const NSEvent& with) override;

private:
    struct Segment {
        std::int64_t index;
        double left;
        double width;
    };
    std::vector<Segment> segments() const;
    void drawSegment(const NSToolbarItemGroup& group, const Segment& segment) const;

    std::weak_ptr<NSToolbarItemGroup> group_;
};

} // namespace zorvan
