#include <zorvan/platform/appkit/NSScrollView.h>

#include <algorithm>

namespace zorvan {

std::shared_ptr<NSClipView> NSClipView::create(const CGRect& frame) {
    return std::make_shared<NSClipView>(Key{}, frame);
}

bool NSClipView::isFlipped() const noexcept { return documentView_ && documentView_->isFlipped(); }

void NSClipView::setDocumentView(const std::shared_ptr<NSView>& view) {
    if (documentView_)
        documentView_->removeFromSuperview();
    documentView_ = view;
    if (view)
        addSubview(view);
}

void NSClipView::Animator::setBoundsOrigin(CGPoint origin) { view_->setBoundsOrigin(origin, true); }

std::shared_ptr<NSScrollView> NSScrollView::create(const CGRect& frame) {
    auto view = std::make_shared<NSScrollView>(Key{}, frame);
    view->contentView_ = NSClipView::create(CGRect(CGPoint(), frame.size));
    view->addSubview(view->contentView_);
    return view;
}

void NSScrollView::setFrame(const CGRect& frame) {
    NSView::setFrame(frame);
    contentView_->setFrame(CGRect(CGPoint(), frame.size));
}

std::shared_ptr<NSScrollView> enclosingScrollView(const NSView& view) {
    for (std::shared_ptr<NSView> holder = view.superview(); holder; holder = holder->superview())
        if (auto scrollView = std::dynamic_pointer_cast<NSScrollView>(holder))
            return scrollView;
    return nullptr;
}

namespace {

/// Where an interval of that length must start to show as much as it can of `from` ... `to`, moved
/// as little as it takes.
double scrolled(double start, double length, double from, double to) {
    if (from < start)
        return from;
    return to > start + length ? std::max(start, std::min(from, to - length)) : start;
}

} // namespace

CGRect visibleRect(const NSView& view) {
    const auto clipView = std::dynamic_pointer_cast<NSClipView>(view.superview());
    if (!clipView)
        return view.bounds();
    const CGPoint offset = view.frame().origin - view.bounds().origin;
    return {clipView->bounds().origin - offset, clipView->bounds().size};
}

void scrollToVisible(const NSView& view, const CGRect& rect) {
    const auto clipView = std::dynamic_pointer_cast<NSClipView>(view.superview());
    if (!clipView)
        return;
    const CGRect shown = clipView->bounds();
    const CGPoint offset = view.frame().origin;
    const CGPoint origin(
        scrolled(shown.x(), shown.width(), rect.minX() + offset.x, rect.maxX() + offset.x),
        scrolled(shown.y(), shown.height(), rect.minY() + offset.y, rect.maxY() + offset.y));
    if (origin != shown.origin)
        clipView->setBoundsOrigin(origin);
}

} // namespace zorvan
