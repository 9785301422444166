#include <zorvan/platform/appkit/NSView.h>

#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace zorvan {

std::shared_ptr<NSView> NSView::create(const CGRect& frame) {
    return std::make_shared<NSView>(Key{}, frame);
}

NSView::~NSView() {
    for (const auto& view : std::exchange(subviews_, {}))
        view->moveTo(nullptr, nullptr);
}

void NSView::setFrame(const CGRect& frame) {
    const CGRect before = std::exchange(frame_, {frame.origin, constrained(frame.size)});
    if (frame_ == before)
        return;
    contentDidChange();
    observers_.tell(&NSViewObserver::frameDidChange);
    if (frame_.size == before.size)
        return;
    needsLayout_ = true;
    updateTrackingAreas();
}

void NSView::setBoundsOrigin(CGPoint origin, bool animated) {
    if (std::exchange(boundsOrigin_, origin) == origin)
        return;
    contentDidChange();
    observers_.tell(&NSViewObserver::boundsOriginDidChange, animated);
    updateTrackingAreas();
}

CGSize NSView::fittingSize() const {
    const CGSize intrinsic = intrinsicContentSize();
    return constrained({intrinsic.width < 0 ? frame_.width() : intrinsic.width,
                        intrinsic.height < 0 ? frame_.height() : intrinsic.height});
}

CGSize NSView::constrained(CGSize size) const {
    for (const auto& constraint : constraints_) {
        double& side =
            constraint->firstAttribute() == NSLayoutAttribute::width ? size.width : size.height;
        side = std::max(side, constraint->constant());
    }
    return size;
}

void NSView::followConstraints() {
    setFrame(frame_);
    setNeedsLayout(true);
}

void NSView::addSubview(const std::shared_ptr<NSView>& view) {
    for (const NSView* holder = this; holder; holder = holder->superview_.lock().get())
        if (holder == view.get())
            fatalError("A view cannot hold itself.");
    const std::shared_ptr<NSView> keptAlive = view;
    keptAlive->moveTo(window(), shared_from_this());
    contentDidChange();
}

void NSView::removeFromSuperview() {
    const std::shared_ptr<NSView> keptAlive = shared_from_this();
    const std::shared_ptr<NSView> holder = superview();
    moveTo(nullptr, nullptr);
    if (holder)
        holder->contentDidChange();
}

/// The views inside go along; they are told only of another window.
void NSView::moveTo(const std::shared_ptr<NSWindow>& window,
                    const std::shared_ptr<NSView>& superview) {
    // A window that is ending cannot be asked for any more.
    const bool isOtherWindow = window ? window_.lock() != window : isInWindow_;
    if (isOtherWindow)
        willMoveAll(window);
    const std::shared_ptr<NSView> holder = superview_.lock();
    if (holder)
        std::erase_if(holder->subviews_, [this](const auto& view) { return view.get() == this; });
    superview_ = superview;
    if (superview)
        superview->subviews_.push_back(shared_from_this());
    if (isOtherWindow)
        didMoveAll(window);
    if (holder != superview)
        viewDidMoveToSuperview();
    if (holder && holder != superview)
        holder->observers_.tell(&NSViewObserver::subviewsDidChange);
    if (superview)
        superview->observers_.tell(&NSViewObserver::subviewsDidChange);
}

// Those told may change the tree, so that copies are walked.

void NSView::willMoveAll(const std::shared_ptr<NSWindow>& window) {
    viewWillMove(window);
    for (const auto& view : std::vector(subviews_))
        view->willMoveAll(window);
}

void NSView::didMoveAll(const std::shared_ptr<NSWindow>& window) {
    window_ = window;
    isInWindow_ = window != nullptr;
    for (const auto& view : std::vector(subviews_))
        if (view->superview_.lock().get() == this)
            view->didMoveAll(window);
    viewDidMoveToWindow();
    if (window)
        updateTrackingAreas();
}

CGPoint NSView::convertToBase(CGPoint point) const {
    const CGRect shown = bounds();
    const double fromTop = isFlipped() ? point.y - shown.minY() : shown.maxY() - point.y;
    const auto holder = superview();
    if (!holder)
        return {point.x - shown.minX(), shown.height() - fromTop};
    const bool isDownward = holder->isFlipped();
    return holder->convertToBase({frame_.minX() + point.x - shown.minX(),
                                  isDownward ? frame_.minY() + fromTop : frame_.maxY() - fromTop});
}

CGPoint NSView::convertFromBase(CGPoint point) const {
    const CGRect shown = bounds();
    const auto holder = superview();
    if (holder)
        return fromSuperview(holder->convertFromBase(point));
    const double fromTop = shown.height() - point.y;
    return {shown.minX() + point.x, isFlipped() ? shown.minY() + fromTop : shown.maxY() - fromTop};
}

CGPoint NSView::fromSuperview(CGPoint point) const {
    const CGRect shown = bounds();
    const auto holder = superview();
    const bool isDownward = holder && holder->isFlipped();
    const double fromTop = isDownward ? point.y - frame_.minY() : frame_.maxY() - point.y;
    return {shown.minX() + point.x - frame_.minX(),
            isFlipped() ? shown.minY() + fromTop : shown.maxY() - fromTop};
}

std::shared_ptr<NSView> NSView::hitTest(CGPoint point) {
    if (isHidden_ || !frame_.contains(point))
        return nullptr;
    const CGPoint inside = fromSuperview(point);
    for (auto view = subviews_.rbegin(); view != subviews_.rend(); ++view)
        if (const auto hit = (*view)->hitTest(inside))
            return hit;
    return shared_from_this();
}

void NSView::setHidden(bool hidden) {
    if (hidden == isHidden_)
        return;
    isHidden_ = hidden;
    contentDidChange();
    propertiesDidChange();
}

void NSView::setNeedsDisplay(bool needsDisplay) {
    needsDisplay_ = needsDisplay;
    if (!needsDisplay)
        return;
    contentDidChange();
    observers_.tell(&NSViewObserver::needsDisplay, bounds());
}

void NSView::setNeedsDisplay(const CGRect& inRect) {
    const CGRect part = inRect.intersection(bounds());
    if (part.isEmpty())
        return;
    needsDisplay_ = true;
    contentDidChange();
    observers_.tell(&NSViewObserver::needsDisplay, part);
}

void NSView::contentDidChange() {
    if (const auto holder = superview())
        holder->contentDidChange();
}

void NSView::setNeedsLayout(bool needsLayout) {
    needsLayout_ = needsLayout;
    if (needsLayout)
        contentDidChange();
}

void NSView::layoutSubtreeIfNeeded() {
    if (needsLayout_) {
        needsLayout_ = false;
        layout();
    }
    for (const auto& view : std::vector(subviews_))
        view->layoutSubtreeIfNeeded();
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

void NSView::handOn(void (NSView::*event)(const NSEvent&), const NSEvent& with) {
    if (const auto holder = superview())
        ((*holder).*event)(with);
}

bool NSView::performKeyEquivalent(const NSEvent& with) {
    const auto views = subviews_;
    return std::any_of(views.begin(), views.end(), [&with](const auto& view) {
        return !view->isHidden_ && view->performKeyEquivalent(with);
    });
}

void NSView::addTrackingArea(const std::shared_ptr<NSTrackingArea>& area) {
    trackingAreas_.push_back(area);
}

void NSView::removeTrackingArea(const std::shared_ptr<NSTrackingArea>& area) {
    const std::shared_ptr<NSTrackingArea> keptAlive = area;
    std::erase(trackingAreas_, keptAlive);
}

void NSView::setShowsFocusRing(bool shows) {
    showsFocusRing_ = shows;
    setNeedsDisplay(true);
}

std::shared_ptr<NSMenu> NSView::menu(const NSEvent& forEvent) {
    const auto holder = superview();
    return menu_ || !holder ? menu_ : holder->menu(forEvent);
}

NSAccessibilityRole NSView::accessibilityRole() const {
    return accessibilityRole_ ? *accessibilityRole_ : ownAccessibilityRole();
}

std::string NSView::accessibilityLabel() const {
    const std::string label = accessibilityLabel_ ? *accessibilityLabel_ : ownAccessibilityLabel();
    return label.empty() ? toolTip_ : label;
}

std::string NSView::accessibilityValue() const {
    return accessibilityValue_ ? *accessibilityValue_ : ownAccessibilityValue();
}

} // namespace zorvan
