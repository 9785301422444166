#include <zorvan/interface/TintedButton.h>

namespace zorvan {

std::optional<NSColor> TintedButton::imageTintColor() const {
    return value(&TintedButtonCell::imageTintColor);
}
void TintedButton::setImageTintColor(std::optional<NSColor> color) {
    store(&TintedButtonCell::setImageTintColor, std::move(color));
}

std::optional<NSColor> TintedButton::imageHoverColor() const {
    return value(&TintedButtonCell::imageHoverColor);
}
void TintedButton::setImageHoverColor(std::optional<NSColor> color) {
    store(&TintedButtonCell::setImageHoverColor, std::move(color));
}

std::optional<NSColor> TintedButton::imagePressedColor() const {
    return value(&TintedButtonCell::imagePressedColor);
}
void TintedButton::setImagePressedColor(std::optional<NSColor> color) {
    store(&TintedButtonCell::setImagePressedColor, std::move(color));
}

std::optional<NSColor> TintedButton::imageDisabledColor() const {
    return value(&TintedButtonCell::imageDisabledColor);
}
void TintedButton::setImageDisabledColor(std::optional<NSColor> color) {
    store(&TintedButtonCell::setImageDisabledColor, std::move(color));
}

std::optional<NSColor> TintedButton::textTintColor() const {
    return value(&TintedButtonCell::textTintColor);
}
void TintedButton::setTextTintColor(std::optional<NSColor> color) {
    store(&TintedButtonCell::setTextTintColor, std::move(color));
}

std::optional<NSColor> TintedButton::textHoverColor() const {
    return value(&TintedButtonCell::textHoverColor);
}
void TintedButton::setTextHoverColor(std::optional<NSColor> color) {
    store(&TintedButtonCell::setTextHoverColor, std::move(color));
}

std::optional<NSColor> TintedButton::textPressedColor() const {
    return value(&TintedButtonCell::textPressedColor);
}
void TintedButton::setTextPressedColor(std::optional<NSColor> color) {
    store(&TintedButtonCell::setTextPressedColor, std::move(color));
}

std::optional<NSColor> TintedButton::textDisabledColor() const {
    return value(&TintedButtonCell::textDisabledColor);
}
void TintedButton::setTextDisabledColor(std::optional<NSColor> color) {
    store(&TintedButtonCell::setTextDisabledColor, std::move(color));
}

std::optional<NSGradient> TintedButton::backgroundTintGradient() const {
    return value(&TintedButtonCell::backgroundTintGradient);
}
void TintedButton::setBackgroundTintGradient(std::optional<NSGradient> gradient) {
    store(&TintedButtonCell::setBackgroundTintGradient, std::move(gradient));
}

std::optional<NSGradient> TintedButton::backgroundHoverGradient() const {
    return value(&TintedButtonCell::backgroundHoverGradient);
}
void TintedButton::setBackgroundHoverGradient(std::optional<NSGradient> gradient) {
    store(&TintedButtonCell::setBackgroundHoverGradient, std::move(gradient));
}

std::optional<NSGradient> TintedButton::backgroundPressedGradient() const {
    return value(&TintedButtonCell::backgroundPressedGradient);
}
void TintedButton::setBackgroundPressedGradient(std::optional<NSGradient> gradient) {
    store(&TintedButtonCell::setBackgroundPressedGradient, std::move(gradient));
}

std::optional<NSGradient> TintedButton::backgroundDisabledGradient() const {
    return value(&TintedButtonCell::backgroundDisabledGradient);
}
void TintedButton::setBackgroundDisabledGradient(std::optional<NSGradient> gradient) {
    store(&TintedButtonCell::setBackgroundDisabledGradient, std::move(gradient));
}

std::optional<double> TintedButton::backgroundGradientAngle() const {
    return value(&TintedButtonCell::backgroundGradientAngle);
}
void TintedButton::setBackgroundGradientAngle(std::optional<double> degrees) {
    store(&TintedButtonCell::setBackgroundGradientAngle, std::move(degrees));
}

std::optional<double> TintedButton::backgroundRadius() const {
    return value(&TintedButtonCell::backgroundRadius);
}
void TintedButton::setBackgroundRadius(std::optional<double> points) {
    store(&TintedButtonCell::setBackgroundRadius, std::move(points));
}

} // namespace zorvan
