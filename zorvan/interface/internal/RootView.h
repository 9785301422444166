#pragma once

#include <zorvan/platform/appkit/NSView.h>

#include <functional>
#include <memory>
#include <utility>

namespace zorvan {

/// The outermost view of a window, which holds all others.
class RootView : public NSView {
public:
    static std::shared_ptr<RootView> create(std::function<void()> contentChanged) {
        auto made = std::make_shared<RootView>(Key{}, CGRect());
        made->contentChanged_ = std::move(contentChanged);
        return made;
    }
    using NSView::NSView;

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
    void contentDidChange() override { contentChanged_(); }

private:
    std::function<void()> contentChanged_;
    bool gotEvent_ = false;
};

} // namespace zorvan
