#pragma once

#include <zorvan/interface/NSTouchBar.h>
#include <zorvan/platform/appkit/NSView.h>

#include <memory>

namespace zorvan {

/// The part of a window that shows a touch bar: its items from left to right on a dark ground.
class TouchBarStrip : public NSView {
public:
    static constexpr double height = 44;

    static std::shared_ptr<TouchBarStrip> create(const std::shared_ptr<NSTouchBar>& touchBar);
    using NSView::NSView;

    void layout() override;
    void draw(Canvas& canvas) const override;

private:
    std::weak_ptr<NSTouchBar> touchBar_;
};

/// Whether the view stands in such a strip, where light things are to be drawn.
bool isOnDarkGround(const NSView& view);

} // namespace zorvan
