#include <zorvan/interface/TintedButton.h>

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/NSWindow.h>

namespace zorvan {

std::shared_ptr<TintedButton> TintedButton::create(const CGRect& frame) {
    const auto button = std::make_shared<TintedButton>(Key{}, frame);
    button->setUp();
    button->useTintedCell();
    return button;
}

std::shared_ptr<TintedButton> TintedButton::create(const Title& settings) {
    const auto button = create();
    button->apply(settings);
    return button;
}

std::shared_ptr<TintedButton> TintedButton::create(const Coder& settings) {
    const auto plain = NSButton::create(settings);
    const auto button = std::make_shared<TintedButton>(Key{}, plain->frame());
    button->setEnabled(plain->isEnabled());
    button->setCell(plain->cell());
    button->useTintedCell();
    return button;
}

TintedButton::~TintedButton() {
    for (const auto& subscriber : {windowDidBecomeMainSubscriber_, windowDidResignMainSubscriber_})
        if (subscriber)
            subscriber->unsubscribe();
}

/// In place of a plain button cell, with what was set on that.
void TintedButton::useTintedCell() {
    const auto plain = buttonCell();
    if (!plain || tintedButtonCell())
        return;
    const auto tinted = TintedButtonCell::create(NSButtonCell::Text{""});
    tinted->setTarget(plain->target());
    tinted->setAction(plain->action());
    tinted->setAttributedTitle(plain->attributedTitle());
    tinted->setImage(plain->image());
    tinted->setImagePosition(plain->imagePosition());
    setCell(tinted);
}

std::shared_ptr<TintedButtonCell> TintedButton::tintedButtonCell() const noexcept {
    return std::dynamic_pointer_cast<TintedButtonCell>(cell());
}

const detail::Tints& TintedButton::ownTints() const noexcept {
    static const detail::Tints none;
    const auto own = tintedButtonCell();
    return own ? own->ownTints() : none;
}

CGSize TintedButton::intrinsicContentSize() const {
    const CGSize natural = NSButton::intrinsicContentSize();
    if (!expandedSize_)
        return natural;
    return {natural.width + expandedSize_->width, natural.height + expandedSize_->height};
}

void TintedButton::setExpandedSize(std::optional<CGSize> size) {
    expandedSize_ = size;
    setNeedsLayout(true);
}

// The mouse

void TintedButton::updateTrackingAreas() {
    NSButton::updateTrackingAreas();
    if (trackingArea_)
        removeTrackingArea(trackingArea_);
    using Options = NSTrackingArea::Options;
    trackingArea_ = NSTrackingArea::create(
        bounds(), Options::mouseEnteredAndExited | Options::activeInActiveApp, shared_from_this());
    addTrackingArea(trackingArea_);
}

void TintedButton::markCell(void (TintedButtonCell::*set)(bool), bool value) {
    if (const auto own = tintedButtonCell())
        (own.get()->*set)(value);
    else
        setNeedsDisplay(true);
}

void TintedButton::mouseEntered(const NSEvent&) { markCell(&TintedButtonCell::setIsHover, true); }

void TintedButton::mouseExited(const NSEvent&) { markCell(&TintedButtonCell::setIsHover, false); }

void TintedButton::mouseDown(const NSEvent&) {
    const auto keptAlive = shared_from_this();
    markCell(&TintedButtonCell::setIsPressed, true);
    sendAction();
}

void TintedButton::mouseDragged(const NSEvent&) {}

void TintedButton::mouseUp(const NSEvent&) { markCell(&TintedButtonCell::setIsPressed, false); }

// The main window

void TintedButton::viewWillMove(const std::shared_ptr<NSWindow>& toWindow) {
    NSButton::viewWillMove(toWindow);
    const auto redraw = [](const std::shared_ptr<TintedButton>& button, const Notification&) {
        button->setNeedsDisplay(true);
    };
    for (const auto& subscriber :
         {windowDidBecomeMainSubscriber(), windowDidResignMainSubscriber()}) {
        subscriber->unsubscribe();
        if (toWindow)
            subscriber->subscribe(std::static_pointer_cast<TintedButton>(shared_from_this()),
                                  redraw);
    }
}

namespace {

const std::shared_ptr<NoteSubscriber>& made(std::shared_ptr<NoteSubscriber>& subscriber,
                                            std::string_view name) {
    if (!subscriber) {
        subscriber = NoteSubscriber::create(NSNotificationCenter::defaultCenter());
        subscriber->setName(NSNotificationName(name));
    }
    return subscriber;
}

} // namespace

const std::shared_ptr<NoteSubscriber>& TintedButton::windowDidBecomeMainSubscriber() {
    return made(windowDidBecomeMainSubscriber_, NSWindow::didBecomeMainNotification);
}

const std::shared_ptr<NoteSubscriber>& TintedButton::windowDidResignMainSubscriber() {
    return made(windowDidResignMainSubscriber_, NSWindow::didResignMainNotification);
}

} // namespace zorvan
