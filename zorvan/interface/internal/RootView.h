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

protected:
    void contentDidChange() override { contentChanged_(); }

private:
    void handOn(void (NSView::*)(const NSEvent&), const NSEvent&) override { gotEvent_ = true; }

    std::function<void()> contentChanged_;
    bool gotEvent_ = false;
};

} // namespace zorvan
