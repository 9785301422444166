#include <zorvan/interface/NSWindow.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/NSControl.h>
#include <zorvan/interface/internal/RootView.h>

#include <algorithm>
#include <iterator>

namespace zorvan {

using Type = NSEvent::EventType;

bool NSWindow::sendEvent(const NSEvent& event, const std::shared_ptr<NSView>& over) {
    if (isClosed_)
        return false;
    const auto keptAlive = shared_from_this();
    layoutIfNeeded();
    if (event.type == Type::keyDown || event.type == Type::keyUp)
        return sendKey(event);
    const bool hasLeft = event.type == Type::mouseExited;
    trackMouse(hasLeft ? std::nullopt : std::optional(event.locationInWindow), event);
    return sendButton(event, over ? over : rootView_->hitTest(event.locationInWindow));
}

namespace {

using Handler = void (NSView::*)(const NSEvent&);

/// What an event of a button does, and who is told.
struct Button {
    enum class Act { press, goOn, release };
    NSEvent::EventType type;
    Act act;
    Handler handler;
};

constexpr Button buttons[] = {
    {Type::leftMouseDown, Button::Act::press, &NSView::mouseDown},
    {Type::leftMouseDragged, Button::Act::goOn, &NSView::mouseDragged},
    {Type::leftMouseUp, Button::Act::release, &NSView::mouseUp},
    {Type::rightMouseDown, Button::Act::press, &NSView::rightMouseDown},
    {Type::rightMouseDragged, Button::Act::goOn, &NSView::rightMouseDragged},
    {Type::rightMouseUp, Button::Act::release, &NSView::rightMouseUp},
    {Type::otherMouseDown, Button::Act::press, &NSView::otherMouseDown},
    {Type::otherMouseDragged, Button::Act::goOn, &NSView::otherMouseDragged},
    {Type::otherMouseUp, Button::Act::release, &NSView::otherMouseUp},
};

bool isDisabled(const std::shared_ptr<NSView>& view) {
    const auto control = std::dynamic_pointer_cast<NSControl>(view);
    return control && !control->isEnabled();
}

} // namespace

bool NSWindow::sendButton(const NSEvent& event, const std::shared_ptr<NSView>& over) {
    if (event.type == Type::scrollWheel)
        return deliver(&NSView::scrollWheel, over, event);
    const auto button = std::ranges::find(buttons, event.type, &Button::type);
    if (button == std::end(buttons))
        return false;
    if (button->act == Button::Act::press) {
        pressedView_ = isDisabled(over) ? nullptr : over;
        giveKeyboard(pressedView_);
    }
    const auto to = pressedView_;
    if (button->act == Button::Act::release)
        pressedView_.reset();
    return deliver(button->handler, to, event);
}

/// False when the event came out at the window's own end.
bool NSWindow::deliver(Handler handler, const std::shared_ptr<NSView>& to, const NSEvent& event) {
    if (!to)
        return false;
    const auto outermost = rootView_;
    outermost->expectEvent();
    ((*to).*handler)(event);
    return !outermost->gotEvent();
}

// The keyboard

namespace {

/// Itself, or by what stands around it.
bool isOutOfSight(std::shared_ptr<NSView> view) {
    while (view && !view->isHidden())
        view = view->superview();
    return view != nullptr;
}

} // namespace

bool NSWindow::sendKey(const NSEvent& event) {
    const auto responder = firstResponder();
    const bool isPress = event.type == Type::keyDown;
    if (deliver(isPress ? &NSView::keyDown : &NSView::keyUp,
                responder && !isOutOfSight(responder) ? responder : contentView_, event))
        return true;
    return isPress && performKeyEquivalent(event);
}

bool NSWindow::performKeyEquivalent(const NSEvent& event) {
    const auto keptAlive = shared_from_this();
    const auto toolbar = toolbar_.bar;
    return !isClosed_ && (rootView_->performKeyEquivalent(event) ||
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
    observers_.tell(&NSWindowObserver::firstResponderDidChange);
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

void NSWindow::giveKeyboardToContent() {
    std::vector<std::shared_ptr<NSView>> views;
    collectKeyViews(contentView_, views);
    for (const auto& view : views)
        if (firstResponder() || makeFirstResponder(view))
            return;
}

void NSWindow::selectKeyView(bool forward) {
    const auto keptAlive = shared_from_this();
    std::vector<std::shared_ptr<NSView>> views;
    collectKeyViews(rootView_, views);
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
        collectAreas(*rootView_, *location, now);
    const Areas before = std::exchange(entered_, now);
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

} // namespace zorvan
