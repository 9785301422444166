#pragma once

#include "Picture.h"
#include "PictureList.h"

#include <zorvan/interface/DynamicToolbar.h>
#include <zorvan/interface/DynamicTouchBar.h>
#include <zorvan/interface/NSWindow.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class KindList;
class PictureGrid;

/// A window that shows the pictures in a grid, beside a list of what kinds they are of. It stands
/// on headless views: this program draws it into a file, and a host may show it.
class PictureWindow {
public:
    /// Named after the file or folder at the path.
    PictureWindow(const std::string& path, const std::vector<ListedFile>& files,
                  const std::vector<PictureFacts>& facts);

    const std::shared_ptr<zorvan::NSWindow>& window() const { return window_; }
    /// The picture after the selected one, or the one before.
    void selectNext(bool forward);
    /// Draws the whole window into a PNG file, twice as many pixels as points; false when it cannot
    /// be written.
    bool writeScreenshot(const std::string& path) const;

private:
    std::function<void()> withGrid(std::function<void(PictureGrid&)> act) const;
    void fillToolbar();
    void fillTouchBar();

    std::shared_ptr<zorvan::NSWindow> window_;
    std::shared_ptr<zorvan::NSSplitView> split_;
    std::shared_ptr<PictureGrid> grid_;
    std::shared_ptr<KindList> kindList_;
    std::shared_ptr<zorvan::DynamicToolbar> toolbar_;
    std::shared_ptr<zorvan::DynamicTouchBar> touchBar_;
};
