#pragma once

#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/DynamicTouchBar.h>
#include <zorvan/interface/NSWindow.h>

#include <functional>
#include <memory>

/// A window with every view in every state.
class GalleryWindow {
public:
    GalleryWindow();

    const std::shared_ptr<zorvan::NSWindow>& window() const { return window_; }
    void setDisplayMode(zorvan::NSToolbar::DisplayMode mode) {
        toolbar_->toolbar()->setDisplayMode(mode);
    }

private:
    void fillToolbar();
    void fillTouchBar(std::function<void(double)> change);

    std::shared_ptr<zorvan::NSWindow> window_;
    std::shared_ptr<zorvan::NSSplitView> split_;
    std::shared_ptr<zorvan::DynamicToolbar> toolbar_;
    std::shared_ptr<zorvan::DynamicTouchBar> touchBar_;
};
