#pragma once

#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/appkit/ActionSender.h>
#include <zorvan/platform/appkit/Canvas.h>
#include <zorvan/platform/appkit/NSAccessibility.h>
#include <zorvan/platform/appkit/NSCursor.h>
#include <zorvan/platform/appkit/NSEvent.h>
#include <zorvan/platform/appkit/NSLayoutConstraint.h>
#include <zorvan/platform/appkit/NSTrackingArea.h>
#include <zorvan/platform/appkit/NSViewObserver.h>
#include <zorvan/platform/appkit/ObserverList.h>
#include <zorvan/platform/foundation/URL.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zorvan {

class NSMenu;
class NSWindow;

/// A rectangle of the interface: it stands in a superview, holds subviews, and draws itself.
///
/// A view needs no display: it keeps all of its state and draws into a bitmap. Lengths are in
/// points; y grows upward unless the view is flipped. Used from the main thread.
class NSView : public ActionSender, public std::enable_shared_from_this<NSView> {
protected:
    /// What only views can make.
    struct Key {};

public:
    /// The side of an intrinsic size that a view does not have.
    static constexpr double noIntrinsicMetric = -1;

    /// In no superview, at that place.
    static std::shared_ptr<NSView> create(const CGRect& frame = {});
    /// For `create`, and for what derives from this.
    NSView(Key, const CGRect& frame) : frame_(frame) {}
    ~NSView() override;
    NSView(const NSView&) = delete;
    NSView& operator=(const NSView&) = delete;

    // Place

    /// Where the view stands, in the coordinates of its superview.
    const CGRect& frame() const noexcept { return frame_; }
    /// Made larger to the right and to the top where active constraints ask for more. The tracking
    /// areas follow another size at once.
    virtual void setFrame(const CGRect& frame);

    /// What the view shows, in its own coordinates; as large as its frame.
    CGRect bounds() const noexcept { return {boundsOrigin_, frame_.size}; }
    /// Scrolls: another origin shows another part of what the view holds. `animated` asks the host
    /// to show the way there.
    void setBoundsOrigin(CGPoint origin, bool animated = false);

    /// True when y grows downward in the view's own coordinates.
    virtual bool isFlipped() const noexcept { return false; }

    /// How large the view would like to be; a side that it does not mind is `noIntrinsicMetric`.
    virtual CGSize intrinsicContentSize() const { return {noIntrinsicMetric, noIntrinsicMetric}; }
    /// The intrinsic size, its frame's where it has none, and what active constraints ask for.
    CGSize fittingSize() const;
    /// From which constraints on the side are made.
    /// @{
    NSLayoutDimension widthAnchor() { return {weak_from_this(), NSLayoutAttribute::width}; }
    NSLayoutDimension heightAnchor() { return {weak_from_this(), NSLayoutAttribute::height}; }
    /// @}
    /// The active ones, in the order in which they became so.
    const std::vector<std::shared_ptr<NSLayoutConstraint>>& constraints() const noexcept {
        return constraints_;
    }

    // The tree

    /// Null for the outermost view.
    std::shared_ptr<NSView> superview() const noexcept { return superview_.lock(); }
    /// From the back to the front: each is drawn over those before it.
    const std::vector<std::shared_ptr<NSView>>& subviews() const noexcept { return subviews_; }
    /// Above the other subviews; taken out of the superview it had. A view that holds this one, or
    /// is this one, stops the program.
    void addSubview(const std::shared_ptr<NSView>& view);
    /// Nothing without a superview.
    void removeFromSuperview();

    /// The window that shows the view; null outside of one.
    std::shared_ptr<NSWindow> window() const noexcept { return window_.lock(); }
    /// Called before the view comes into a window, goes into another, or (null) leaves its one.
    /// Whatever overrides this or the next one calls it first.
    virtual void viewWillMove(const std::shared_ptr<NSWindow>& /*toWindow*/) {}
    /// Called once `window` says so, for the views inside first.
    virtual void viewDidMoveToWindow() {}
    /// Called once `superview` is another one, or null, before observers are told. Does nothing
    /// unless overridden.
    virtual void viewDidMoveToSuperview() {}

    /// A point of this view in the coordinates of the outermost view around it, which in a window
    /// are those of the window; and back.
    /// @{
    CGPoint convertToBase(CGPoint point) const;
    CGPoint convertFromBase(CGPoint point) const;
    /// @}
    /// The innermost visible view at a point, given in the coordinates of the superview; null
    /// outside.
    virtual std::shared_ptr<NSView> hitTest(CGPoint point);

    // Drawing

    /// Whether the view, and with it all that it holds, is neither drawn nor found by the mouse, by
    /// Tab or by key equivalents. Says nothing of the views around it.
    /// @{
    bool isHidden() const noexcept { return isHidden_; }
    void setHidden(bool hidden);
    /// @}

    /// Whether the view has changed since its host last drew it; true at first.
    bool needsDisplay() const noexcept { return needsDisplay_; }
    /// True asks for all of it; false takes the mark off.
    void setNeedsDisplay(bool needsDisplay);
    /// Only that part, in the view's own coordinates; nothing when it is out of the bounds.
    void setNeedsDisplay(const CGRect& inRect);

    /// Whether `layout` is to be called before the window is drawn next; true at first.
    /// @{
    bool needsLayout() const noexcept { return needsLayout_; }
    void setNeedsLayout(bool needsLayout);
    /// Places the subviews. Does nothing unless overridden.
    /// @}
    virtual void layout() {}
    /// Calls `layout` for every view from here inward that needs it, outer ones first.
    void layoutSubtreeIfNeeded();

    /// Draws the view and what it holds, `scale` pixels to a point, on white. Absent when the view
    /// has no size or too large a one.
    std::optional<Bitmap> render(double scale = 1) const;

    /// Draws the view's own part; subviews come after, above it.
    virtual void draw(Canvas& /*canvas*/) const {}

    /// Events of the mouse's buttons, of the wheel and of keys go on to the superview unless
    /// overridden.
    /// @{
    virtual void mouseDown(const NSEvent& with) { handOn(&NSView::mouseDown, with); }
    virtual void mouseDragged(const NSEvent& with) { handOn(&NSView::mouseDragged, with); }
    virtual void mouseUp(const NSEvent& with) { handOn(&NSView::mouseUp, with); }
    virtual void rightMouseDown(const NSEvent& with) { handOn(&NSView::rightMouseDown, with); }
    virtual void rightMouseDragged(const NSEvent& with) {
        handOn(&NSView::rightMouseDragged, with);
    }
    virtual void rightMouseUp(const NSEvent& with) { handOn(&NSView::rightMouseUp, with); }
    /// The third button and those after it.
    virtual void otherMouseDown(const NSEvent& with) { handOn(&NSView::otherMouseDown, with); }
    virtual void otherMouseDragged(const NSEvent& with) {
        handOn(&NSView::otherMouseDragged, with);
    }
    virtual void otherMouseUp(const NSEvent& with) { handOn(&NSView::otherMouseUp, with); }
    virtual void scrollWheel(const NSEvent& with) { handOn(&NSView::scrollWheel, with); }
    /// Keys go to the first responder of the window first.
    virtual void keyDown(const NSEvent& with) { handOn(&NSView::keyDown, with); }
    virtual void keyUp(const NSEvent& with) { handOn(&NSView::keyUp, with); }
    /// @}
    /// For a key that nobody took, whoever has the keyboard; true once it is taken. Asks the
    /// visible subviews, in order, unless overridden.
    virtual bool performKeyEquivalent(const NSEvent& with);
    /// Goes to the owner of a tracking area, and no further.
    /// @{
    virtual void mouseMoved(const NSEvent& /*with*/) {}
    virtual void mouseEntered(const NSEvent& /*with*/) {}
    virtual void mouseExited(const NSEvent& /*with*/) {}
    /// @}

    /// Where the owner of each area is told of the mouse.
    const std::vector<std::shared_ptr<NSTrackingArea>>& trackingAreas() const noexcept {
        return trackingAreas_;
    }
    /// Its owner is told from the next event on.
    void addTrackingArea(const std::shared_ptr<NSTrackingArea>& area);
    /// Nothing when the view does not have it.
    void removeTrackingArea(const std::shared_ptr<NSTrackingArea>& area);
    /// Called when the view has come into a window and when its bounds have changed, to exchange
    /// the areas that depend on them. Whatever overrides it calls it first.
    virtual void updateTrackingAreas() {}

    // The keyboard

    /// Whether the view may become what keys go to; false unless overridden.
    virtual bool acceptsFirstResponder() const { return false; }
    /// Called before the view gets the keyboard, and before it loses it; false refuses.
    /// @{
    virtual bool becomeFirstResponder() { return true; }
    virtual bool resignFirstResponder() { return true; }
    /// @}
    /// Where Tab goes from here; null for the next in the order of the tree.
    /// @{
    std::shared_ptr<NSView> nextKeyView() const noexcept { return nextKeyView_.lock(); }
    void setNextKeyView(const std::shared_ptr<NSView>& view) { keep(nextKeyView_, view); }
    /// @}
    /// Whether the host draws a frame around the view while it has the keyboard. True unless set.
    /// @{
    bool showsFocusRing() const noexcept { return showsFocusRing_; }
    void setShowsFocusRing(bool shows);
    /// @}

    // What a host shows besides

    /// Shown while the mouse rests over the view; empty for none.
    /// @{
    const std::string& toolTip() const noexcept { return toolTip_; }
    void setToolTip(std::string toolTip) { keep(toolTip_, std::move(toolTip)); }
    /// @}
    /// The pointer over the view; `arrow` unless set.
    /// @{
    NSCursor cursor() const noexcept { return cursor_; }
    void setCursor(NSCursor cursor) { keep(cursor_, cursor); }
    /// The context menu; null for that of the superview.
    /// @}
    virtual std::shared_ptr<NSMenu> menu(const NSEvent& forEvent);
    /// Null takes the view's own away. What overrides `menu` need not look at it.
    void setMenu(std::shared_ptr<NSMenu> menu) { menu_ = std::move(menu); }

    // What is dragged, out of the window and into it.

    /// The files, or other addresses, that a drag from a point of the view carries; none unless
    /// overridden. Asked when the mouse, which was pressed there, has begun to move; where there is
    /// something to carry, the view is told no more of that press.
    virtual std::vector<URL> draggedURLs(CGPoint /*from*/) const { return {}; }
    /// The picture that such a drag carries, for whoever wants pixels rather than a file; null
    /// unless overridden.
    virtual std::shared_ptr<const Bitmap> draggedPicture(CGPoint /*from*/) const { return nullptr; }
    /// Whether what is dragged over the view may be dropped there; if not, the view around it is
    /// asked. False unless overridden.
    virtual bool acceptsDrop(const std::vector<URL>& /*urls*/) const { return false; }
    /// What the view accepts was dropped at a point of it. Does nothing unless overridden.
    virtual void urlsDropped(const std::vector<URL>& /*urls*/, CGPoint /*at*/) {}

    /// What a screen reader says of the view: controls know it of themselves, and what is set goes
    /// before that. `group` when nobody says otherwise.
    /// @{
    NSAccessibilityRole accessibilityRole() const;
    void setAccessibilityRole(NSAccessibilityRole role) { keep(accessibilityRole_, role); }
    /// @}
    /// What the view is called; its tool tip when nothing else is known.
    std::string accessibilityLabel() const;
    /// An empty one leaves the tool tip.
    void setAccessibilityLabel(std::string label) { keep(accessibilityLabel_, std::move(label)); }
    /// What it stands at, as text.
    std::string accessibilityValue() const;
    /// A host says the new one.
    void setAccessibilityValue(std::string value) { keep(accessibilityValue_, std::move(value)); }

    /// Hosts that show the view, and tests. Not kept alive; one that has gone is told no more.
    void addObserver(const std::shared_ptr<NSViewObserver>& observer) { observers_.add(observer); }

protected:
    /// What this view or one inside it shows has changed. The outermost view of a window overrides
    /// it.
    virtual void contentDidChange();
    /// Something that a host shows besides the drawing has changed.
    void propertiesDidChange() { observers_.tell(&NSViewObserver::propertiesDidChange); }
    /// What a class of views knows of itself: `group`, and nothing to say, unless overridden.
    /// @{
    virtual NSAccessibilityRole ownAccessibilityRole() const { return NSAccessibilityRole::group; }
    virtual std::string ownAccessibilityLabel() const { return {}; }
    virtual std::string ownAccessibilityValue() const { return {}; }
    /// @}

private:
    friend class NSWindow;
    friend class NSLayoutConstraint;

    void drawAll(Canvas& canvas) const;
    void moveTo(const std::shared_ptr<NSWindow>& window, const std::shared_ptr<NSView>& superview);
    void willMoveAll(const std::shared_ptr<NSWindow>& window);
    void didMoveAll(const std::shared_ptr<NSWindow>& window);
    CGSize constrained(CGSize size) const;
    void followConstraints();
    /// To the superview; the outermost view of a window overrides it.
    virtual void handOn(void (NSView::*event)(const NSEvent&), const NSEvent& with);
    CGPoint fromSuperview(CGPoint point) const;
    template <class Property, class Value>
    void keep(Property& property, Value value) {
        property = std::move(value);
        propertiesDidChange();
    }

    CGRect frame_;
    CGPoint boundsOrigin_;
    std::weak_ptr<NSView> superview_;
    std::weak_ptr<NSWindow> window_;
    std::vector<std::shared_ptr<NSView>> subviews_;
    std::vector<std::shared_ptr<NSTrackingArea>> trackingAreas_;
    std::vector<std::shared_ptr<NSLayoutConstraint>> constraints_;
    ObserverList<NSViewObserver> observers_;
    std::weak_ptr<NSView> nextKeyView_;
    std::string toolTip_;
    std::shared_ptr<NSMenu> menu_;
    std::optional<NSAccessibilityRole> accessibilityRole_;
    std::optional<std::string> accessibilityLabel_;
    std::optional<std::string> accessibilityValue_;
    NSCursor cursor_ = NSCursor::arrow;
    bool showsFocusRing_ = true;
    bool isInWindow_ = false;
    bool isHidden_ = false;
    bool needsDisplay_ = true;
    bool needsLayout_ = true;
};

} // namespace zorvan
