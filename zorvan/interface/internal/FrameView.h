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

    /// Whether an event handed to a view since then has come through all that hold it to here.
    void expectEvent() noexcept { gotEvent_ = false; }
    bool gotEvent() const noexcept { return gotEvent_; }
    void mouseDown(const NSEvent&) override { gotEvent_ = true; }
    void mouseDragged(const NSEvent&) override { gotEvent_ = true; }
    void mouseUp(const NSEvent&) override { gotEvent_ = true; }
    void rightMouseDown(const NSEvent&) override { gotEvent_ = true; }
    void rightMouseDragged(const NSEvent&) override { gotEvent_ = true; }
    void rightMouseUp(const NSEvent&) override { gotEvent_ = true; }
    void otherMouseDown(const NSEvent&) override { gotEvent_ = true; }
    void otherMouseDragged(const NSEvent&) override { gotEvent_ = true; }
    void otherMouseUp(const NSEvent&) override { gotEvent_ = true; }
    void scrollWheel(const NSEvent&) override { gotEvent_ = true; }
    void keyDown(const NSEvent&) override { gotEvent_ = true; }
    void keyUp(const NSEvent&) override { gotEvent_ = true; }

protected:
    void contentDidChange() override;

private:
    std::string title_;
    std::function<void()> contentChanged_;
    bool gotEvent_ = false;
};

} // namespace zorvan
