#pragma once

#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/appkit/Canvas.h>
#include <zorvan/platform/appkit/ViewCall.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zorvan {

/// A rectangle of the interface: it stands in a superview, holds subviews, and draws itself.
///
/// A view needs no display: it keeps all of its state and draws into a bitmap. Used from the main
/// thread.
class NSView : public std::enable_shared_from_this<NSView> {
protected:
    struct Key {};

public:
    static std::shared_ptr<NSView> create(const CGRect& frame = {}) {
        return std::make_shared<NSView>(Key{}, frame);
    }
    NSView(Key, const CGRect& frame) : frame_(frame) {}
    virtual ~NSView();
    NSView(const NSView&) = delete;
    NSView& operator=(const NSView&) = delete;

    /// Where the view stands, in the coordinates of its superview.
    const CGRect& frame() const noexcept { return frame_; }
    virtual void setFrame(const CGRect& frame) { frame_ = frame; }

    /// What the view shows, in its own coordinates; as large as its frame.
    CGRect bounds() const noexcept { return {boundsOrigin_, frame_.size}; }
    void setBoundsOrigin(CGPoint origin);

    /// True when y grows downward in the view's own coordinates.
    virtual bool isFlipped() const noexcept { return false; }

    std::shared_ptr<NSView> superview() const noexcept { return superview_.lock(); }
    const std::vector<std::shared_ptr<NSView>>& subviews() const noexcept { return subviews_; }
    /// Above the other subviews; taken out of the superview it had. A view that holds this one, or is
    /// this one, stops the program.
    void addSubview(const std::shared_ptr<NSView>& view);
    void removeFromSuperview();

    bool isHidden() const noexcept { return isHidden_; }
    void setHidden(bool hidden) { isHidden_ = hidden; }

    /// Draws the view and what it holds, `scale` pixels to a point, on white. Absent when the view has
    /// no size or too large a one.
    std::optional<Bitmap> render(double scale = 1) const;

    /// Told of each change made through an animated call or by the operations of a subclass.
    void setCallObserver(ViewCallObserver observer) { callObserver_ = std::move(observer); }

    /// Draws the view's own part; subviews come after, above it.
    virtual void draw(Canvas& canvas) const;

protected:
    void note(std::string name, std::string arguments = {}) const {
        if (callObserver_)
            callObserver_({std::move(name), std::move(arguments)});
    }

private:
    void drawAll(Canvas& canvas) const;

    CGRect frame_;
    CGPoint boundsOrigin_;
    std::weak_ptr<NSView> superview_;
    std::vector<std::shared_ptr<NSView>> subviews_;
    ViewCallObserver callObserver_;
    bool isHidden_ = false;
};

} // namespace zorvan
