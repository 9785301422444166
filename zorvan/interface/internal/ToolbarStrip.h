#pragma once

#include <zorvan/interface/NSToolbar.h>
#include <zorvan/platform/appkit/NSView.h>

#include <memory>
#include <vector>

namespace zorvan {

/// The part of a window that shows a toolbar: its items from left to right, navigational ones
/// first, in the middle of the height. Flexible spaces share what is left; items that find no room
/// at the right edge are hidden.
class ToolbarStrip : public NSView {
public:
    static double height(const NSToolbar& toolbar);

    static std::shared_ptr<ToolbarStrip> create(const std::shared_ptr<NSToolbar>& toolbar);
    using NSView::NSView;

    void layout() override;
    void draw(Canvas& canvas) const override;

private:
    struct Place {
        std::shared_ptr<NSToolbarItem> item;
        double left;
        double width;
    };

    void showItems(const std::vector<std::shared_ptr<NSToolbarItem>>& items);

    std::weak_ptr<NSToolbar> toolbar_;
    std::vector<Place> places_;
};

} // namespace zorvan
