#include <zorvan/interface/NSWindow.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/NSControl.h>
#include <zorvan/interface/internal/FrameView.h>
#include <zorvan/interface/internal/ToolbarStrip.h>
#include <zorvan/interface/internal/TouchBarStrip.h>
#include <zorvan/media/CGImage.h>
#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <algorithm>
#include <cmath>

namespace zorvan {

namespace {

CGSize atLeastOne(CGSize size) {
    const auto side = [](double length) {
        return std::isfinite(length) && length > 1 ? length : 1;
    };
    return {side(size.width), side(size.height)};
}

} // namespace

std::shared_ptr<NSWindow> NSWindow::create(CGSize contentSize, std::string title) {
    const auto window = std::make_shared<NSWindow>(Key{}, contentSize, std::move(title));
    window->setUp();
    return window;
}

NSWindow::NSWindow(Key, CGSize contentSize, std::string title)
    : title_(std::move(title)), contentSize_(atLeastOne(contentSize)) {}

NSWindow::~NSWindow() {
    if (toolbar_)
        toolbar_->window_.reset();
    if (touchBar_)
        touchBar_->window_.reset();
}

void NSWindow::setUp() {
    frameView_ = FrameView::create();
    frameView_->setContentChanged([weak = weak_from_this()] {
        if (const auto window = weak.lock())
            window->contentDidChange();
    });
    frameView_->setTitle(title_);
    frameView_->didMoveAll(shared_from_this());
    setContentView(nullptr);
}

void NSWindow::setTitle(std::string title) {
    title_ = std::move(title);
    frameView_->setTitle(title_);
    tellObserver(&NSWindowObserver::propertiesDidChange);
}

// What stands where

CGSize NSWindow::size() const {
    const double bars =
        (toolbar_ ? ToolbarStrip::height(*toolbar_) : 0) + (touchBar_ ? TouchBarStrip::height : 0);
    return {contentSize_.width, contentSize_.height + titleBarHeight + bars};
}

void NSWindow::placeViews() {
    const CGSize whole = size();
    frameView_->setFrame(whole.rect());
    double top = whole.height - titleBarHeight;
    if (toolbarStrip_) {
        const double height = ToolbarStrip::height(*toolbar_);
        toolbarStrip_->setFrame({0, top - height, whole.width, height});
        top -= height;
    }
    contentView_->setFrame({0, top - contentSize_.height, whole.width, contentSize_.height});
    if (touchBarStrip_)
        touchBarStrip_->setFrame({0, 0, whole.width, TouchBarStrip::height});
}

void NSWindow::setContentSize(CGSize size) {
    const CGSize wanted(std::max(atLeastOne(size).width, contentMinSize_.width),
                        std::max(atLeastOne(size).height, contentMinSize_.height));
    if (wanted == contentSize_)
        return;
    const auto keptAlive = shared_from_this();
    contentSize_ = wanted;
    placeViews();
    post(didResizeNotification);
}

void NSWindow::setContentMinSize(CGSize size) {
    contentMinSize_ = atLeastOne(size);
    setContentSize(contentSize_);
    tellObserver(&NSWindowObserver::propertiesDidChange);
}

void NSWindow::setContentView(std::shared_ptr<NSView> view) {
    if (!view)
        view = NSView::create();
    if (view == contentView_)
        return;
    const auto keptAlive = shared_from_this();
    if (contentView_)
        contentView_->removeFromSuperview();
    contentView_ = view;
    frameView_->addSubview(view);
    placeViews();
    tellObserver(&NSWindowObserver::contentViewDidChange);
}

void NSWindow::setToolbar(std::shared_ptr<NSToolbar> toolbar) {
    if (toolbar == toolbar_)
        return;
    const auto keptAlive = shared_from_this();
    if (toolbar_) {
        toolbarStrip_->removeFromSuperview();
        toolbarStrip_.reset();
        toolbar_->comeInto(nullptr);
    }
    if (const auto other = toolbar ? toolbar->window() : nullptr)
        other->setToolbar(nullptr);
    toolbar_ = std::move(toolbar);
    if (toolbar_) {
        toolbarStrip_ = ToolbarStrip::create(toolbar_);
        frameView_->addSubview(toolbarStrip_);
        toolbar_->comeInto(keptAlive);
    }
    placeViews();
    setToolbarNeedsLayout();
}

void NSWindow::setTouchBar(std::shared_ptr<NSTouchBar> touchBar) {
    if (touchBar == touchBar_)
        return;
    const auto keptAlive = shared_from_this();
    if (touchBar_) {
        touchBarStrip_->removeFromSuperview();
        touchBarStrip_.reset();
        touchBar_->window_.reset();
    }
    if (const auto other = touchBar ? touchBar->window() : nullptr)
        other->setTouchBar(nullptr);
    touchBar_ = std::move(touchBar);
    if (touchBar_) {
        touchBarStrip_ = TouchBarStrip::create(touchBar_);
        frameView_->addSubview(touchBarStrip_);
        touchBar_->window_ = keptAlive;
    }
    placeViews();
    setTouchBarNeedsLayout();
}

// The main window

void NSWindow::post(std::string_view name) {
    NSNotificationCenter::defaultCenter()->post(NSNotificationName(name), shared_from_this());
}

bool NSWindow::isMainWindow() const noexcept {
    return NSApplication::shared().mainWindow_.lock().get() == this;
}

void NSWindow::orderFront() {
    isVisible_ = true;
    isClosed_ = false;
}

void NSWindow::makeMainWindow() {
    NSApplication& application = NSApplication::shared();
    const auto before = application.mainWindow();
    if (before.get() == this)
        return;
    const auto self = shared_from_this();
    orderFront();
    if (before)
        before->resignMainWindow();
    if (isClosed_ || application.mainWindow())
        return;
    application.mainWindow_ = self;
    post(didBecomeMainNotification);
}

void NSWindow::resignMainWindow() {
    if (!isMainWindow())
        return;
    NSApplication::shared().mainWindow_.reset();
    post(didResignMainNotification);
}

void NSWindow::close() {
    if (!isVisible_ || isClosed_)
        return;
    const auto keptAlive = shared_from_this();
    isClosed_ = true;
    post(willCloseNotification);
    resignMainWindow();
    isVisible_ = false;
    pressedView_.reset();
    entered_.clear();
}

// Events

bool NSWindow::sendEvent(const NSEvent& event, const std::shared_ptr<NSView>& over) {
    if (isClosed_)
        return false;
    const auto keptAlive = shared_from_this();
    layoutIfNeeded();
    using Type = NSEvent::EventType;
    if (event.type == Type::keyDown || event.type == Type::keyUp)
        return sendKey(event);
    const bool hasLeft = event.type == Type::mouseExited;
    trackMouse(hasLeft ? std::nullopt : std::optional(event.locationInWindow), event);
    return sendButton(event, over ? over : hitView(event.locationInWindow));
}

std::shared_ptr<NSView> NSWindow::hitView(CGPoint location) const {
    return frameView_->hitTest(location);
}

namespace {

using Handler = void (NSView::*)(const NSEvent&);

struct ButtonHandler {
    enum class Act { press, goOn, release };
    Act act;
    Handler handler;
};

std::optional<ButtonHandler> buttonHandler(NSEvent::EventType type) {
    using Type = NSEvent::EventType;
    using Act = ButtonHandler::Act;
    switch (type) {
    case Type::leftMouseDown:
        return {{Act::press, &NSView::mouseDown}};
    case Type::leftMouseDragged:
        return {{Act::goOn, &NSView::mouseDragged}};
    case Type::leftMouseUp:
        return {{Act::release, &NSView::mouseUp}};
    case Type::rightMouseDown:
        return {{Act::press, &NSView::rightMouseDown}};
    case Type::rightMouseDragged:
        return {{Act::goOn, &NSView::rightMouseDragged}};
    case Type::rightMouseUp:
        return {{Act::release, &NSView::rightMouseUp}};
    case Type::otherMouseDown:
        return {{Act::press, &NSView::otherMouseDown}};
    case Type::otherMouseDragged:
        return {{Act::goOn, &NSView::otherMouseDragged}};
    case Type::otherMouseUp:
        return {{Act::release, &NSView::otherMouseUp}};
    default:
        return std::nullopt;
    }
}

bool isDisabled(const std::shared_ptr<NSView>& view) {
    const auto control = std::dynamic_pointer_cast<NSControl>(view);
    return control && !control->isEnabled();
}

} // namespace

bool NSWindow::sendButton(const NSEvent& event, const std::shared_ptr<NSView>& over) {
    using Act = ButtonHandler::Act;
    if (event.type == NSEvent::EventType::scrollWheel)
        return deliver(&NSView::scrollWheel, over, event);
    const auto button = buttonHandler(event.type);
    if (!button)
        return false;
    if (button->act == Act::press) {
        pressedView_ = isDisabled(over) ? nullptr : over;
        giveKeyboard(pressedView_);
    }
    const auto to = pressedView_;
    if (button->act == Act::release)
        pressedView_.reset();
    return deliver(button->handler, to, event);
}

/// False when the event came out at the window's own end.
bool NSWindow::deliver(Handler handler, const std::shared_ptr<NSView>& to, const NSEvent& event) {
    if (!to)
        return false;
    const auto outermost = frameView_;
    outermost->expectEvent();
    ((*to).*handler)(event);
    return !outermost->gotEvent();
}

// The keyboard

bool NSWindow::sendKey(const NSEvent& event) {
    const auto responder = firstResponder();
    const bool isPress = event.type == NSEvent::EventType::keyDown;
    if (deliver(isPress ? &NSView::keyDown : &NSView::keyUp, responder ? responder : contentView_,
                event))
        return true;
    return isPress && performKeyEquivalent(event);
}

bool NSWindow::performKeyEquivalent(const NSEvent& event) {
    const auto keptAlive = shared_from_this();
    const auto toolbar = toolbar_;
    return !isClosed_ && (frameView_->performKeyEquivalent(event) ||
                          (toolbar && toolbar->performKeyEquivalent(event)));
}

std::shared_ptr<NSView> NSWindow::firstResponder() const noexcept {
    auto responder = firstResponder_.lock();
    return responder && responder->window().get() == this ? responder : nullptr;
}

bool NSWindow::makeFirstResponder(const std::shared_ptr<NSView>& view) {
    const auto keptAlive = shared_from_this();
    const auto before = firstResponder();
    if (view == before)
        return true;
    if (before && !before->resignFirstResponder())
        return false;
    const bool takesIt = view && view->window() == keptAlive && view->acceptsFirstResponder() &&
                         view->becomeFirstResponder();
    firstResponder_ = takesIt ? view : nullptr;
    tellObserver(&NSWindowObserver::firstResponderDidChange);
    return takesIt || !view;
}

void NSWindow::giveKeyboard(std::shared_ptr<NSView> hit) {
    while (hit && !hit->acceptsFirstResponder())
        hit = hit->superview();
    if (hit)
        makeFirstResponder(hit);
}

namespace {

void collectKeyViews(const std::shared_ptr<NSView>& view,
                     std::vector<std::shared_ptr<NSView>>& found) {
    if (view->isHidden())
        return;
    if (view->acceptsFirstResponder())
        found.push_back(view);
    for (const auto& inner : view->subviews())
        collectKeyViews(inner, found);
}

} // namespace

void NSWindow::selectKeyView(bool forward) {
    const auto keptAlive = shared_from_this();
    std::vector<std::shared_ptr<NSView>> views;
    collectKeyViews(frameView_, views);
    if (views.empty())
        return;
    const auto current = firstResponder();
    const auto isWanted = [&](const std::shared_ptr<NSView>& view) {
        return forward ? current && current->nextKeyView() == view
                       : current && view->nextKeyView() == current;
    };
    if (const auto named = std::find_if(views.begin(), views.end(), isWanted);
        named != views.end()) {
        makeFirstResponder(*named);
        return;
    }
    if (!forward)
        std::reverse(views.begin(), views.end());
    const auto place = std::find(views.begin(), views.end(), current);
    const bool goesRound = place == views.end() || place + 1 == views.end();
    makeFirstResponder(goesRound ? views.front() : *(place + 1));
}

// Tracking areas

namespace {

using Areas = std::vector<std::shared_ptr<NSTrackingArea>>;

bool isActive(const NSTrackingArea& area) {
    using Options = NSTrackingArea::Options;
    return area.options().contains(Options::activeAlways) ||
           (area.options().contains(Options::activeInActiveApp) &&
            NSApplication::shared().isActive());
}

/// The active areas at a point of the window, of the view and of those in it, outer ones first.
void collectAreas(const NSView& view, CGPoint location, Areas& areas) {
    const CGPoint point = view.convertFromBase(location);
    if (view.isHidden() || !view.bounds().contains(point))
        return;
    for (const auto& area : view.trackingAreas())
        if (area->rect().contains(point) && isActive(*area))
            areas.push_back(area);
    for (const auto& inner : view.subviews())
        collectAreas(*inner, location, areas);
}

bool holds(const Areas& areas, const std::shared_ptr<NSTrackingArea>& area) {
    return std::find(areas.begin(), areas.end(), area) != areas.end();
}

/// Of the areas of one list those that the other has not; one that only took the place of another
/// with the same owner counts as that one.
Areas difference(const Areas& areas, const Areas& others) {
    Areas unmatched;
    for (const auto& other : others)
        if (!holds(areas, other))
            unmatched.push_back(other);
    Areas rest;
    for (const auto& area : areas) {
        if (holds(others, area))
            continue;
        const auto twin = std::find_if(unmatched.begin(), unmatched.end(), [&](const auto& other) {
            return other->owner() == area->owner();
        });
        if (twin == unmatched.end())
            rest.push_back(area);
        else
            unmatched.erase(twin);
    }
    return rest;
}

} // namespace

void NSWindow::trackMouse(const std::optional<CGPoint>& location, const NSEvent& event) {
    Areas now;
    if (location)
        collectAreas(*frameView_, *location, now);
    const Areas before = std::exchange(entered_, now);
    using Type = NSEvent::EventType;
    NSEvent told = event;
    told.type = Type::mouseExited;
    for (const auto& area : difference(before, now)) {
        told.trackingArea = area;
        const auto owner = area->owner();
        if (owner && area->options().contains(NSTrackingArea::Options::mouseEnteredAndExited))
            owner->mouseExited(told);
    }
    told.type = Type::mouseEntered;
    for (const auto& area : difference(now, before))
        tellEntered(area, told);
    if (event.type != Type::mouseMoved)
        return;
    told.type = Type::mouseMoved;
    for (const auto& area : now) {
        told.trackingArea = area;
        const auto owner = area->owner();
        if (owner && holds(entered_, area) &&
            area->options().contains(NSTrackingArea::Options::mouseMoved))
            owner->mouseMoved(told);
    }
}

/// Unless what was told before has taken the area out of the window.
void NSWindow::tellEntered(const std::shared_ptr<NSTrackingArea>& area, NSEvent event) {
    const auto owner = area->owner();
    if (!holds(entered_, area))
        return;
    if (!owner || owner->window().get() != this) {
        std::erase(entered_, area);
        return;
    }
    event.trackingArea = area;
    if (area->options().contains(NSTrackingArea::Options::mouseEnteredAndExited))
        owner->mouseEntered(event);
}

// Drawing

void NSWindow::contentDidChange() {
    if (std::exchange(viewsNeedDisplay_, true))
        return;
    tellObserver(&NSWindowObserver::viewsNeedDisplay);
}

void NSWindow::tellObserver(void (NSWindowObserver::*change)()) const {
    // Whoever is told may add another.
    const auto observers = observers_;
    for (const auto& weak : observers)
        if (const auto observer = weak.lock())
            ((*observer).*change)();
}

void NSWindow::addObserver(const std::shared_ptr<NSWindowObserver>& observer) {
    std::erase_if(observers_, [](const auto& other) { return other.expired(); });
    observers_.push_back(observer);
}

void NSWindow::displayIfNeeded() {
    const auto keptAlive = shared_from_this();
    viewsNeedDisplay_ = false;
    layoutIfNeeded();
}

void NSWindow::setToolbarNeedsLayout() {
    barsNeedLayout_ = true;
    contentDidChange();
    tellObserver(&NSWindowObserver::toolbarDidChange);
}

void NSWindow::setTouchBarNeedsLayout() {
    barsNeedLayout_ = true;
    contentDidChange();
    tellObserver(&NSWindowObserver::touchBarDidChange);
}

void NSWindow::layoutIfNeeded() {
    const auto keptAlive = shared_from_this();
    // The bars follow what other views ask for, the sizes of their items and the dividers below
    // them.
    if (std::exchange(barsNeedLayout_, false))
        placeViews();
    contentView_->layoutSubtreeIfNeeded();
    if (toolbarStrip_)
        toolbarStrip_->layout();
    if (touchBarStrip_)
        touchBarStrip_->layout();
    frameView_->layoutSubtreeIfNeeded();
}

std::optional<Bitmap> NSWindow::render(double scale) {
    layoutIfNeeded();
    auto bitmap = frameView_->render(scale);
    if (bitmap) {
        frameView_->didDisplayAll();
        viewsNeedDisplay_ = false;
    }
    return bitmap;
}

std::optional<Data> NSWindow::pngData(double scale) {
    std::optional<Bitmap> bitmap = render(scale);
    return bitmap ? CGImage::create(std::move(*bitmap))->pngData() : std::nullopt;
}

} // namespace zorvan
