#include <zorvan/platform/appkit/NSView.h>

#include <zorvan/numbers-geometry/RealNumber.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <cstring>

namespace zorvan {

NSView::~NSView() = default;

void NSView::setBoundsOrigin(CGPoint origin) {
    boundsOrigin_ = origin;
    note("setBoundsOrigin", description(origin.x) + ", " + description(origin.y));
}

void NSView::addSubview(const std::shared_ptr<NSView>& view) {
    for (const NSView* holder = this; holder; holder = holder->superview_.lock().get())
        if (holder == view.get())
            fatalError("A view cannot hold itself.");
    view->removeFromSuperview();
    view->superview_ = weak_from_this();
    subviews_.push_back(view);
}

void NSView::removeFromSuperview() {
    if (const std::shared_ptr<NSView> superview = superview_.lock()) {
        const std::shared_ptr<NSView> keptAlive = shared_from_this();
        std::erase(superview->subviews_, keptAlive);
    }
    superview_.reset();
}

std::optional<Bitmap> NSView::render(double scale) const {
    const auto [width, height] = (frame_.size.abs() * scale).roundIntWidthHeight();
    std::optional<Bitmap> bitmap = Bitmap::make(width, height);
    if (!bitmap)
        return std::nullopt;
    std::memset(bitmap->data(), 255, static_cast<std::size_t>(bitmap->byteCount()));
    const Canvas whole(*bitmap, scale);
    Canvas canvas = whole.inside(whole.clip(), bounds(), isFlipped());
    drawAll(canvas);
    return bitmap;
}

void NSView::draw(Canvas&) const {}

void NSView::drawAll(Canvas& canvas) const {
    draw(canvas);
    for (const auto& view : subviews_) {
        if (view->isHidden_)
            continue;
        Canvas inner = canvas.inside(view->frame_, view->bounds(), view->isFlipped());
        if (!inner.clip().isNull())
            view->drawAll(inner);
    }
}

} // namespace zorvan
