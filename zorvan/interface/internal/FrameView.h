#pragma once

#include <zorvan/platform/appkit/NSView.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace zorvan {

/// The outermost view of a window; draws the title bar.
class FrameView : public NSView {
public:
    static std::shared_ptr<FrameView> create() {
        return std::make_shared<FrameView>(Key{}, CGRect());
    }
    using NSView::NSView;

    void setTitle(std::string title);
    /// Called when something in the window has changed.
    void setContentChanged(std::function<void()> changed) { contentChanged_ = std::move(changed); }
    void draw(Canvas& canvas) const override;

protected:
    void contentDidChange() override;

private:
    std::string title_;
    std::function<void()> contentChanged_;
};

} // namespace zorvan
