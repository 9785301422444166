#pragma once

#include <zorvan/interface/NSToolbar.h>
#include <zorvan/interface/NSTouchBar.h>
#include <zorvan/platform/appkit/NSEvent.h>
#include <zorvan/platform/appkit/NSView.h>
#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

class FrameView;
class ToolbarStrip;
class TouchBarStrip;

/// A window: a title bar, below it a toolbar when there is one, the content, and at the bottom the
/// strip of a touch bar when there is one.
///
/// It needs no display: it places its views, hands them the events that it is told of, and draws
/// the whole of itself into a bitmap. A host shows that in a real window. Coordinates of the window
/// are in points from its bottom left corner. Main thread only.
class NSWindow : public std::enable_shared_from_this<NSWindow> {
public:
    /// Posted by a window, with itself as the sender.
    static constexpr std::string_view didBecomeMainNotification =
        "NSWindowDidBecomeMainNotification";
    static constexpr std::string_view didResignMainNotification =
        "NSWindowDidResignMainNotification";
    static constexpr std::string_view didResizeNotification = "NSWindowDidResizeNotification";
    static constexpr std::string_view willCloseNotification = "NSWindowWillCloseNotification";

    /// In points. A host whose windows have title bars of their own leaves ours out.
    static constexpr double titleBarHeight = 30;

    /// With an empty content view of that size. The window is not shown yet.
    static std::shared_ptr<NSWindow> create(CGSize contentSize, std::string title = {});
    ~NSWindow();
    NSWindow(const NSWindow&) = delete;
    NSWindow& operator=(const NSWindow&) = delete;

    const std::string& title() const noexcept { return title_; }
    void setTitle(std::string title);

    /// Of the whole window.
    CGSize size() const;
    CGSize contentSize() const noexcept { return contentSize_; }
    /// No side below 1 point. The content keeps its size when bars come and go; the window does
    /// not.
    void setContentSize(CGSize size);

    const std::shared_ptr<NSView>& contentView() const noexcept { return contentView_; }
    /// A new, empty one for null.
    void setContentView(std::shared_ptr<NSView> view);
    const std::shared_ptr<NSToolbar>& toolbar() const noexcept { return toolbar_; }
    /// Null for none. The toolbar leaves the window that it was in.
    void setToolbar(std::shared_ptr<NSToolbar> toolbar);
    const std::shared_ptr<NSTouchBar>& touchBar() const noexcept { return touchBar_; }
    /// Null for none. The touch bar leaves the window that it was in.
    void setTouchBar(std::shared_ptr<NSTouchBar> touchBar);

    bool isVisible() const noexcept { return isVisible_; }
    void orderFront();
    /// Posts that it will, resigns being main, and hides. Nothing when it is hidden or closing.
    void close();

    bool isMainWindow() const noexcept;
    /// Shows the window and makes it the main one: the one before resigns and posts that, then this
    /// one posts that it has become main. An observer that, told of the resignation, closes this
    /// window or makes another one main has the last word.
    void makeMainWindow();
    /// Nothing when it is not the main window.
    void resignMainWindow();

    /// Hands an event on: presses to the view that is hit, unless it is a disabled control; drags
    /// and releases to the one that was pressed, be it in the window any more or not; entering and
    /// leaving to the owners of tracking areas. `mouseExited` means that the mouse has left the
    /// window. Nothing once the window is closed.
    void sendEvent(const NSEvent& event);

    void layoutIfNeeded();
    /// The whole window, `scale` pixels to a point; absent when that is too large a bitmap.
    std::optional<Bitmap> render(double scale = 1);
    /// The same as a PNG file.
    std::optional<Data> pngData(double scale = 1);
    /// Whether something has changed since the window was last drawn.
    bool viewsNeedDisplay() const noexcept { return viewsNeedDisplay_; }
    /// Called when `viewsNeedDisplay` becomes true; for the host that draws the window.
    void setDisplayHandler(std::function<void()> handler) { displayHandler_ = std::move(handler); }

private:
    struct Key {};
    friend class NSToolbar;
    friend class NSTouchBar;

public:
    NSWindow(Key, CGSize contentSize, std::string title);

private:
    void setUp();
    void setToolbarNeedsLayout();
    void contentDidChange();
    void placeViews();
    void post(std::string_view name);
    void trackMouse(const std::optional<CGPoint>& location, const NSEvent& event);
    void tellEntered(const std::shared_ptr<NSTrackingArea>& area, NSEvent event);

    std::string title_;
    CGSize contentSize_;
    std::shared_ptr<FrameView> frameView_;
    std::shared_ptr<NSView> contentView_;
    std::shared_ptr<NSToolbar> toolbar_;
    std::shared_ptr<ToolbarStrip> toolbarStrip_;
    std::shared_ptr<NSTouchBar> touchBar_;
    std::shared_ptr<TouchBarStrip> touchBarStrip_;
    std::shared_ptr<NSView> pressedView_;
    /// The tracking areas that the mouse is in.
    std::vector<std::shared_ptr<NSTrackingArea>> entered_;
    std::function<void()> displayHandler_;
    bool isVisible_ = false;
    bool isClosed_ = false;
    bool viewsNeedDisplay_ = true;
    bool barsNeedLayout_ = true;
};

} // namespace zorvan
