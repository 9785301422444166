#include <zorvan/interface/NSCell.h>

#include <zorvan/interface/NSControl.h>

namespace zorvan {

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

CGSize NSCell::cellSize() const { return {NSView::noIntrinsicMetric, NSView::noIntrinsicMetric}; }

void NSCell::drawInterior(const CGRect&, const NSControl&) const {}

void NSCell::didChange() {
    if (const auto control = controlView())
        control->setNeedsDisplay(true);
}

} // namespace zorvan
