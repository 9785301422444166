#include <zorvan/interface/NSCell.h>

#include <zorvan/interface/NSControl.h>

namespace zorvan {

NSCell::~NSCell() = default;

bool NSCell::isEnabled() const noexcept {
    const auto control = controlView();
    return control ? control->isEnabled() : isEnabled_;
}

void NSCell::setEnabled(bool enabled) {
    isEnabled_ = enabled;
    if (const auto control = controlView())
        control->setEnabled(enabled);
}

void NSCell::setHighlighted(bool highlighted) {
    if (highlighted == isHighlighted_)
        return;
    isHighlighted_ = highlighted;
    didChange();
}

void NSCell::setStringValue(std::string_view text) {
    setAttributedStringValue(NSAttributedString(text));
}

void NSCell::setAttributedStringValue(NSAttributedString text) {
    text_ = std::move(text);
    didChange();
}

void NSCell::setImage(std::shared_ptr<NSImage> image) {
    image_ = std::move(image);
    didChange();
}

CGSize NSCell::cellSize() const { return {NSView::noIntrinsicMetric, NSView::noIntrinsicMetric}; }

CGRect NSCell::drawingRect(const CGRect& forBounds) const { return forBounds; }

void NSCell::draw(const CGRect& withFrame, const NSControl& in) const {
    drawInterior(withFrame, in);
}

void NSCell::drawInterior(const CGRect&, const NSControl&) const {}

void NSCell::didChange() {
    if (const auto control = controlView())
        control->setNeedsDisplay(true);
}

} // namespace zorvan
