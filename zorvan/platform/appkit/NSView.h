#pragma once

#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/appkit/ActionSender.h>
#include <zorvan/platform/appkit/Canvas.h>
#include <zorvan/platform/appkit/NSEvent.h>
#include <zorvan/platform/appkit/NSLayoutConstraint.h>
#include <zorvan/platform/appkit/NSTrackingArea.h>
#include <zorvan/platform/appkit/ViewCall.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zorvan {

class NSWindow;

/// A rectangle of the interface: it stands in a superview, holds subviews, and draws itself.
///
/// A view needs no display: it keeps all of its state and draws into a bitmap. Lengths are in
/// points; y grows upward unless the view is flipped. Used from the main thread.
class NSView : public ActionSender, public std::enable_shared_from_this<NSView> {
protected:
    struct Key {};

public:
    /// The side of an intrinsic size that a view does not have.
    static constexpr double noIntrinsicMetric = -1;

    static std::shared_ptr<NSView> create(const CGRect& frame = {}) {
        return std::make_shared<NSView>(Key{}, frame);
    }
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
    /// Scrolls: another origin shows another part of what the view holds.
    void setBoundsOrigin(CGPoint origin);

    /// True when y grows downward in the view's own coordinates.
    virtual bool isFlipped() const noexcept { return false; }

    /// How large the view would like to be; a side that it does not mind is `noIntrinsicMetric`.
    virtual CGSize intrinsicContentSize() const;
    /// The intrinsic size, its frame's where it has none, and what active constraints ask for.
    CGSize fittingSize() const;
    NSLayoutDimension widthAnchor() { return {weak_from_this(), NSLayoutAttribute::width}; }
    NSLayoutDimension heightAnchor() { return {weak_from_this(), NSLayoutAttribute::height}; }
    const std::vector<std::shared_ptr<NSLayoutConstraint>>& constraints() const noexcept {
        return constraints_;
    }

    // The tree

    /// Null for the outermost view.
    std::shared_ptr<NSView> superview() const noexcept { return superview_.lock(); }
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
    virtual void viewWillMove(const std::shared_ptr<NSWindow>& toWindow);
    virtual void viewDidMoveToWindow();

    /// A point of this view in the coordinates of the outermost view around it, which in a window
    /// are those of the window; and back.
    CGPoint convertToBase(CGPoint point) const;
    CGPoint convertFromBase(CGPoint point) const;
    /// The innermost visible view at a point, given in the coordinates of the superview; null
    /// outside.
    virtual std::shared_ptr<NSView> hitTest(CGPoint point);

    // Drawing

    bool isHidden() const noexcept { return isHidden_; }
    void setHidden(bool hidden);

    /// Whether the view has changed since its window was last drawn.
    bool needsDisplay() const noexcept { return needsDisplay_; }
    void setNeedsDisplay(bool needsDisplay);

    bool needsLayout() const noexcept { return needsLayout_; }
    void setNeedsLayout(bool needsLayout);
    /// Places the subviews. Does nothing unless overridden.
    virtual void layout();
    /// Calls `layout` for every view from here inward that needs it, outer ones first.
    void layoutSubtreeIfNeeded();

    /// Draws the view and what it holds, `scale` pixels to a point, on white. Absent when the view
    /// has no size or too large a one.
    std::optional<Bitmap> render(double scale = 1) const;

    /// Draws the view's own part; subviews come after, above it.
    virtual void draw(Canvas& canvas) const;

    // The mouse. Presses, drags and releases go on to the superview unless overridden.

    virtual void mouseDown(const NSEvent& with);
    virtual void mouseDragged(const NSEvent& with);
    virtual void mouseUp(const NSEvent& with);
    // These go to the owner of a tracking area, and no further.
    virtual void mouseMoved(const NSEvent& with);
    virtual void mouseEntered(const NSEvent& with);
    virtual void mouseExited(const NSEvent& with);

    /// Where the owner of each area is told of the mouse.
    const std::vector<std::shared_ptr<NSTrackingArea>>& trackingAreas() const noexcept {
        return trackingAreas_;
    }
    void addTrackingArea(const std::shared_ptr<NSTrackingArea>& area);
    /// Nothing when the view does not have it.
    void removeTrackingArea(const std::shared_ptr<NSTrackingArea>& area);
    /// Called when the view has come into a window and when its bounds have changed, to exchange
    /// the areas that depend on them. Whatever overrides it calls it first.
    virtual void updateTrackingAreas();

    /// Told of each change made through an animated call or by the operations of a subclass, and of
    /// each mark for redisplay.
    void setCallObserver(ViewCallObserver observer) { callObserver_ = std::move(observer); }

protected:
    void note(std::string name, std::string arguments = {}) const {
        if (callObserver_)
            callObserver_({std::move(name), std::move(arguments)});
    }
    /// What this view or one inside it shows has changed. The outermost view of a window overrides
    /// it.
    virtual void contentDidChange();

private:
    friend class NSWindow;
    friend class NSLayoutConstraint;

    void drawAll(Canvas& canvas) const;
    void moveTo(const std::shared_ptr<NSWindow>& window, const std::shared_ptr<NSView>& superview);
    void willMoveAll(const std::shared_ptr<NSWindow>& window);
    void didMoveAll(const std::shared_ptr<NSWindow>& window);
    void didDisplayAll();
    CGSize constrained(CGSize size) const;
    void followConstraints();

    CGRect frame_;
    CGPoint boundsOrigin_;
    std::weak_ptr<NSView> superview_;
    std::weak_ptr<NSWindow> window_;
    std::vector<std::shared_ptr<NSView>> subviews_;
    std::vector<std::shared_ptr<NSTrackingArea>> trackingAreas_;
    std::vector<std::shared_ptr<NSLayoutConstraint>> constraints_;
    ViewCallObserver callObserver_;
    bool isInWindow_ = false;
    bool isHidden_ = false;
    bool needsDisplay_ = true;
    bool needsLayout_ = true;
};

} // namespace zorvan
