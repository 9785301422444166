#include <zorvan/interface/TintedButtonCell.h>

#include <zorvan/interface/NSImage.h>
#include <zorvan/interface/TintedButton.h>
#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSGradient.h>

#include <algorithm>

namespace zorvan {

std::shared_ptr<TintedButtonCell> TintedButtonCell::create(Text argument) {
    const auto cell = std::make_shared<TintedButtonCell>(Key{});
    cell->setTitle(argument.text.value);
    return cell;
}

std::shared_ptr<TintedButtonCell> TintedButtonCell::create(Image argument) {
    const auto cell = std::make_shared<TintedButtonCell>(Key{});
    cell->setImage(argument.image);
    return cell;
}

std::shared_ptr<TintedButtonCell> TintedButtonCell::create(const Coder& argument) {
    const auto cell = std::make_shared<TintedButtonCell>(Key{});
    cell->decode(argument.coder);
    return cell;
}

template <class Value>
const Value& TintedButtonCell::chosen(const Value& tint, const Value& hover, const Value& pressed,
                                      const Value& disabled) const {
    const Value& own = !isEnabled() ? disabled : isPressed_ ? pressed : isHover_ ? hover : tint;
    return own ? own : tint;
}

void TintedButtonCell::drawBezel(const CGRect& withFrame, const NSControl& in) const {
    const std::optional<NSGradient>& gradient =
        chosen(tints_.backgroundTintGradient, tints_.backgroundHoverGradient,
               tints_.backgroundPressedGradient, tints_.backgroundDisabledGradient);
    if (!gradient)
        return NSButtonCell::drawBezel(withFrame, in);
    const CGRect frame = drawingRect(withFrame);
    if (frame.isEmpty())
        return;
    const double most = frame.size.abs().min() * 0.5;
    const double radius = std::clamp(tints_.backgroundRadius.value_or(0), 0.0, most);
    zorvan::draw(*gradient, *nsRoundedPath(frame, radius),
                 tints_.backgroundGradientAngle.value_or(0));
}

void TintedButtonCell::drawInterior(const CGRect& withFrame, const NSControl& in) const {
    CGRect frame = withFrame;
    const auto* const button = dynamic_cast<const TintedButton*>(controlView().get());
    if (button && button->expandedSize())
        frame = frame.shrunkBy(
            {.dx = button->expandedSize()->width / 2, .dy = button->expandedSize()->height / 2});
    NSButtonCell::drawInterior(frame, in);
}

void TintedButtonCell::drawImage(const NSImage& image, const CGRect& withFrame,
                                 const NSControl& in) const {
    const std::optional<NSColor>& color =
        chosen(tints_.imageTintColor, tints_.imageHoverColor, tints_.imagePressedColor,
               tints_.imageDisabledColor);
    if (color)
        // The colour says what disabled looks like, so that the picture is not drawn faint as well.
        tintedImage(image, *color, 1)->draw(withFrame);
    else
        NSButtonCell::drawImage(image, withFrame, in);
}

CGRect TintedButtonCell::drawTitle(const NSAttributedString& title, const CGRect& withFrame,
                                   const NSControl& in) const {
    const std::optional<NSColor>& color = chosen(tints_.textTintColor, tints_.textHoverColor,
                                                 tints_.textPressedColor, tints_.textDisabledColor);
    if (!color)
        return NSButtonCell::drawTitle(title, withFrame, in);
    NSMutableAttributedString tinted(title);
    tinted.addAttribute(AttributeName::foregroundColor, TextColor(color->rgba()),
                        {0, tinted.length()});
    return NSButtonCell::drawTitle(tinted, withFrame, in);
}

} // namespace zorvan
