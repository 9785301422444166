#pragma once

#include <zorvan/interface/NSToolbar.h>
#include <zorvan/interface/NSTouchBar.h>
#include <zorvan/interface/NSWindowObserver.h>
#include <zorvan/platform/appkit/NSEvent.h>
#include <zorvan/platform/appkit/NSView.h>
#include <zorvan/platform/appkit/ObserverList.h>
#include <zorvan/platform/foundation/NameLiteral.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

class BarView;
class RootView;

/// A window: a title, a toolbar when there is one, the content, and a touch bar when there is one.
///
/// It needs no display: it keeps its state, places its content and hands its views the events that
/// it is told of. A host shows it in a real window, with bars of its own for the items. Coordinates
/// of the window are in points from the bottom left corner of its content. Main thread only.
class NSWindow : public std::enable_shared_from_this<NSWindow> {
    struct Key {};
    friend class NSToolbar;
    friend class NSTouchBar;

public:
    /// Posted by a window, with itself as the sender.
    /// @{
    static constexpr NameLiteral didBecomeMainNotification = "NSWindowDidBecomeMainNotification";
    static constexpr NameLiteral didResignMainNotification = "NSWindowDidResignMainNotification";
    static constexpr NameLiteral didResizeNotification = "NSWindowDidResizeNotification";
    static constexpr NameLiteral willCloseNotification = "NSWindowWillCloseNotification";
    /// @}

    /// With an empty content view of that size. The window is not shown yet.
    static std::shared_ptr<NSWindow> create(CGSize contentSize, std::string title = {});
    /// For `create`.
    NSWindow(Key, CGSize contentSize, std::string title);
    ~NSWindow();
    NSWindow(const NSWindow&) = delete;
    NSWindow& operator=(const NSWindow&) = delete;

    /// What the window's frame says; empty unless given.
    /// @{
    const std::string& title() const noexcept { return title_; }
    void setTitle(std::string title);
    /// @}

    /// In points, without the bars.
    CGSize contentSize() const noexcept { return contentSize_; }
    /// No side below 1 point, nor below the least size. The content keeps its size when bars come
    /// and go.
    void setContentSize(CGSize size);
    /// 1 x 1 point unless set. A smaller content grows at once.
    /// @{
    CGSize contentMinSize() const noexcept { return contentMinSize_; }
    void setContentMinSize(CGSize size);
    /// @}
    /// Under which name a host remembers where the window stands and how large it is, for the next
    /// start of the program; empty, as at first, for nowhere.
    const std::string& frameAutosaveName() const noexcept { return frameAutosaveName_; }
    /// Counts from when the window is shown next.
    void setFrameAutosaveName(std::string name) { frameAutosaveName_ = std::move(name); }

    /// Never null.
    const std::shared_ptr<NSView>& contentView() const noexcept { return contentView_; }
    /// A new, empty one for null.
    void setContentView(std::shared_ptr<NSView> view);
    /// Null when there is none.
    const std::shared_ptr<NSToolbar>& toolbar() const noexcept { return toolbar_.bar; }
    /// Null for none. The toolbar leaves the window that it was in.
    void setToolbar(std::shared_ptr<NSToolbar> toolbar);
    /// Null when there is none.
    const std::shared_ptr<NSTouchBar>& touchBar() const noexcept { return touchBar_.bar; }
    /// Null for none. The touch bar leaves the window that it was in.
    void setTouchBar(std::shared_ptr<NSTouchBar> touchBar);

    /// Whether a host that shows the window has it on the desktop: from `orderFront` or
    /// `makeMainWindow` until `close`.
    bool isVisible() const noexcept { return isVisible_; }
    /// Shows the window, without making it the main one. It may have been closed before.
    void orderFront();
    /// Posts that it will, resigns being main, and hides. Nothing when it is hidden or closing.
    void close();

    /// Whether it is the one that the user works in.
    bool isMainWindow() const noexcept;
    /// Shows the window and makes it the main one: the one before resigns and posts that, then this
    /// one posts that it has become main. An observer that, told of the resignation, closes this
    /// window or makes another one main has the last word.
    void makeMainWindow();
    /// Nothing when it is not the main window.
    void resignMainWindow();

    /// Hands an event on. Presses go to the view that is hit, unless it is a disabled control, and
    /// give the keyboard to the innermost view there that accepts it; drags and releases go to the
    /// one that was pressed, be it in the window any more or not; the wheel to the view that is
    /// hit; entering and leaving to the owners of tracking areas. `mouseExited` means that the
    /// mouse has left the window. Keys go to the first responder unless it is hidden, itself or
    /// with what holds it, else to the content view, and when nobody takes a press it may be a key
    /// equivalent: of a view, or of a menu of the toolbar.
    ///
    /// A host that knows which view the mouse is over says so. False when nobody took the event;
    /// always once the window is closed.
    bool sendEvent(const NSEvent& event, const std::shared_ptr<NSView>& over = nullptr);

    /// For the press of a key that the first responder did not take: true when it is the key
    /// equivalent of a view, or of a menu of the toolbar, and that has done its work.
    bool performKeyEquivalent(const NSEvent& event);

    /// What keys go to, while it is not hidden; null for none.
    std::shared_ptr<NSView> firstResponder() const noexcept;
    /// Null takes the keyboard from all. False when the one before does not let go, and when the
    /// view stands elsewhere or does not take it; in the second case nobody has it afterwards.
    bool makeFirstResponder(const std::shared_ptr<NSView>& view);
    /// To the next view that accepts the keyboard, in the order of the tree or as `nextKeyView`
    /// says, from the last to the first. Nothing when there is none.
    /// @{
    void selectNextKeyView() { selectKeyView(true); }
    void selectPreviousKeyView() { selectKeyView(false); }
    /// @}
    /// When no view has the keyboard, gives it to the first of the content that accepts it: what a
    /// host does that shows the window.
    void giveKeyboardToContent();

    /// Places the bars and the content, and whatever in them needs it.
    void layoutIfNeeded();
    /// Whether something has changed since the window was last displayed.
    bool viewsNeedDisplay() const noexcept { return viewsNeedDisplay_; }
    /// What a host does before it shows what has changed: lays out.
    void displayIfNeeded();
    /// The host that shows the window, and tests. Not kept alive; one that has gone is told no
    /// more.
    void addObserver(const std::shared_ptr<NSWindowObserver>& observer) {
        observers_.add(observer);
    }

private:
    /// A bar, and the view that holds those of its items; null when there is none.
    template <class Bar>
    struct Held {
        std::shared_ptr<Bar> bar;
        std::shared_ptr<BarView> view;
    };

    template <class Bar>
    void setBar(Held<Bar> NSWindow::*place, std::shared_ptr<Bar> bar);
    void barDidChange(void (NSWindowObserver::*change)());
    void contentDidChange();
    bool sendButton(const NSEvent& event, const std::shared_ptr<NSView>& over);
    bool sendKey(const NSEvent& event);
    bool deliver(void (NSView::*handler)(const NSEvent&), const std::shared_ptr<NSView>& to,
                 const NSEvent& event);
    void giveKeyboard(std::shared_ptr<NSView> hit);
    void selectKeyView(bool forward);
    void placeViews();
    void holdBars();
    void post(std::string_view name);
    void trackMouse(const std::optional<CGPoint>& location, const NSEvent& event);
    void tellEntered(const std::shared_ptr<NSTrackingArea>& area, NSEvent event);

    std::string title_;
    CGSize contentSize_;
    std::shared_ptr<RootView> rootView_;
    std::shared_ptr<NSView> contentView_;
    Held<NSToolbar> toolbar_;
    Held<NSTouchBar> touchBar_;
    std::shared_ptr<NSView> pressedView_;
    std::weak_ptr<NSView> firstResponder_;
    /// The tracking areas that the mouse is in.
    std::vector<std::shared_ptr<NSTrackingArea>> entered_;
    ObserverList<NSWindowObserver> observers_;
    std::string frameAutosaveName_;
    CGSize contentMinSize_{1, 1};
    bool isVisible_ = false;
    bool isClosed_ = false;
    bool viewsNeedDisplay_ = true;
};

} // namespace zorvan
