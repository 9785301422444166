#include <zorvan/interface/NSButton.h>

#include <zorvan/interface/NSImage.h>
#include <zorvan/platform/foundation/internal/valueUnder.h>

namespace zorvan {

using internal::valueUnder;

std::shared_ptr<NSButton> NSButton::create(const CGRect& frame) {
    const auto button = std::make_shared<NSButton>(Key{}, frame);
    button->setUp();
    return button;
}

std::shared_ptr<NSButton> NSButton::create(const Title& settings) {
    const auto button = create();
    button->apply(settings);
    return button;
}

std::shared_ptr<NSButton> NSButton::create(const Coder& button) {
    const PropertyList::Dictionary& coder = button.coder;
    const auto made = std::make_shared<NSButton>(Key{}, decodeFrame(coder));
    made->setCell(NSButtonCell::create(NSButtonCell::Coder{coder}));
    made->setEnabled(valueUnder<bool>(coder, "enabled").value_or(true));
    return made;
}

void NSButton::apply(const Title& settings) {
    setTitle(settings.title.value);
    setTarget(settings.target);
    setAction(settings.action);
    setFrame({CGPoint(), fittingSize()});
}

void NSButton::setUp() { setCell(NSButtonCell::create(NSButtonCell::Text{""})); }

PropertyList::Dictionary NSButton::encode() const {
    const auto cell = buttonCell();
    PropertyList::Dictionary coder = cell ? cell->encode() : PropertyList::Dictionary();
    coder.insert_or_assign("frame", PropertyList(encodeFrame(frame())));
    coder.insert_or_assign("enabled", PropertyList(isEnabled()));
    return coder;
}

PropertyList::Dictionary NSButton::encodeFrame(const CGRect& frame) {
    return {{"x", frame.origin.x},
            {"y", frame.origin.y},
            {"width", frame.size.width},
            {"height", frame.size.height}};
}

CGRect NSButton::decodeFrame(const PropertyList::Dictionary& coder) {
    const auto* const frame = valueUnder<PropertyList::Dictionary>(coder, "frame");
    const auto side = [frame](std::string_view key) {
        return frame ? valueUnder<double>(*frame, key).value_or(0) : 0;
    };
    return {side("x"), side("y"), side("width"), side("height")};
}

std::shared_ptr<NSButtonCell> NSButton::buttonCell() const noexcept {
    return std::dynamic_pointer_cast<NSButtonCell>(cell());
}

// The mouse

void NSButton::performClick() {
    if (isEnabled())
        sendAction();
}

bool NSButton::isInside(const NSEvent& event) const {
    return bounds().contains(convertFromBase(event.locationInWindow));
}

void NSButton::mouseDown(const NSEvent&) {
    if (isEnabled() && cell())
        cell()->setHighlighted(true);
}

void NSButton::mouseDragged(const NSEvent& with) {
    if (isEnabled() && cell())
        cell()->setHighlighted(isInside(with));
}

void NSButton::mouseUp(const NSEvent& with) {
    if (!cell() || !cell()->isHighlighted())
        return;
    cell()->setHighlighted(false);
    if (isInside(with))
        performClick();
}

// The keyboard

void NSButton::keyDown(const NSEvent& with) {
    if (with.modifierFlags == NSEvent::ModifierFlags() &&
        (with.characters == " " || with.characters == "\r"))
        performClick();
    else
        NSControl::keyDown(with);
}

bool NSButton::performKeyEquivalent(const NSEvent& with) {
    const auto keptAlive = shared_from_this();
    if (!isEnabled() || !isKeyEquivalent(with, keyEquivalent_, modifiers_))
        return NSControl::performKeyEquivalent(with);
    performClick();
    return true;
}

std::string NSButton::ownAccessibilityLabel() const {
    const auto picture = image();
    return !title().empty() || !toolTip().empty() || !picture ? title()
                                                              : picture->accessibilityDescription();
}

} // namespace zorvan
