#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/colour/NSGradient.h>
#include <zorvan/interface/NSButtonCell.h>

#include <memory>
#include <optional>
#include <utility>

namespace zorvan {

/// A button cell whose image, title and background have colours for each state.
///
/// Disabled comes before pressed, pressed before hovered. A state without a value of its own shows
/// the tint; without a tint that part looks as it does in any button. Every change marks the
/// control for redisplay.
class TintedButtonCell : public NSButtonCell {
public:
    static std::shared_ptr<TintedButtonCell> create(Text argument);
    static std::shared_ptr<TintedButtonCell> create(Image argument);
    /// As a button cell decodes; colours, gradients, angle and radius are absent.
    static std::shared_ptr<TintedButtonCell> create(const Coder& argument);
    using NSButtonCell::NSButtonCell;

    // False at first.

    bool isHover() const noexcept { return isHover_; }
    void setIsHover(bool isHover) { store(isHover_, isHover); }
    bool isPressed() const noexcept { return isPressed_; }
    void setIsPressed(bool isPressed) { store(isPressed_, isPressed); }

    // Absent at first. The angle is in degrees, counter-clockwise from a gradient that goes from
    // left to right; the radius is in points.

    const std::optional<NSColor>& imageTintColor() const noexcept { return imageTintColor_; }
    void setImageTintColor(std::optional<NSColor> color) {
        store(imageTintColor_, std::move(color));
    }
    const std::optional<NSColor>& imageHoverColor() const noexcept { return imageHoverColor_; }
    void setImageHoverColor(std::optional<NSColor> color) {
        store(imageHoverColor_, std::move(color));
    }
    const std::optional<NSColor>& imagePressedColor() const noexcept { return imagePressedColor_; }
    void setImagePressedColor(std::optional<NSColor> color) {
        store(imagePressedColor_, std::move(color));
    }
    const std::optional<NSColor>& imageDisabledColor() const noexcept {
        return imageDisabledColor_;
    }
    void setImageDisabledColor(std::optional<NSColor> color) {
        store(imageDisabledColor_, std::move(color));
    }
    const std::optional<NSColor>& textTintColor() const noexcept { return textTintColor_; }
    void setTextTintColor(std::optional<NSColor> color) { store(textTintColor_, std::move(color)); }
    const std::optional<NSColor>& textHoverColor() const noexcept { return textHoverColor_; }
    void setTextHoverColor(std::optional<NSColor> color) {
        store(textHoverColor_, std::move(color));
    }
    const std::optional<NSColor>& textPressedColor() const noexcept { return textPressedColor_; }
    void setTextPressedColor(std::optional<NSColor> color) {
        store(textPressedColor_, std::move(color));
    }
    const std::optional<NSColor>& textDisabledColor() const noexcept { return textDisabledColor_; }
    void setTextDisabledColor(std::optional<NSColor> color) {
        store(textDisabledColor_, std::move(color));
    }
    const std::optional<NSGradient>& backgroundTintGradient() const noexcept {
        return backgroundTintGradient_;
    }
    void setBackgroundTintGradient(std::optional<NSGradient> gradient) {
        store(backgroundTintGradient_, std::move(gradient));
    }
    const std::optional<NSGradient>& backgroundHoverGradient() const noexcept {
        return backgroundHoverGradient_;
    }
    void setBackgroundHoverGradient(std::optional<NSGradient> gradient) {
        store(backgroundHoverGradient_, std::move(gradient));
    }
    const std::optional<NSGradient>& backgroundPressedGradient() const noexcept {
        return backgroundPressedGradient_;
    }
    void setBackgroundPressedGradient(std::optional<NSGradient> gradient) {
        store(backgroundPressedGradient_, std::move(gradient));
    }
    const std::optional<NSGradient>& backgroundDisabledGradient() const noexcept {
        return backgroundDisabledGradient_;
    }
    void setBackgroundDisabledGradient(std::optional<NSGradient> gradient) {
        store(backgroundDisabledGradient_, std::move(gradient));
    }
    const std::optional<double>& backgroundGradientAngle() const noexcept {
        return backgroundGradientAngle_;
    }
    void setBackgroundGradientAngle(std::optional<double> degrees) {
        store(backgroundGradientAngle_, std::move(degrees));
    }
    const std::optional<double>& backgroundRadius() const noexcept { return backgroundRadius_; }
    void setBackgroundRadius(std::optional<double> points) {
        store(backgroundRadius_, std::move(points));
    }

    /// A rounded rectangle of the background gradient; that of any button when there is none.
    void drawBezel(const CGRect& withFrame, const NSControl& in) const override;
    /// Smaller by what a tinted button is expanded.
    void drawInterior(const CGRect& withFrame, const NSControl& in) const override;
    void drawImage(const NSImage& image, const CGRect& withFrame,
                   const NSControl& in) const override;
    CGRect drawTitle(const NSAttributedString& title, const CGRect& withFrame,
                     const NSControl& in) const override;

private:
    template <class Value>
    void store(Value& field, Value value) {
        field = std::move(value);
        didChange();
    }
    template <class Value>
    const Value& chosen(const Value& tint, const Value& hover, const Value& pressed,
                        const Value& disabled) const;

    bool isHover_ = false;
    bool isPressed_ = false;
    std::optional<NSColor> imageTintColor_;
    std::optional<NSColor> imageHoverColor_;
    std::optional<NSColor> imagePressedColor_;
    std::optional<NSColor> imageDisabledColor_;
    std::optional<NSColor> textTintColor_;
    std::optional<NSColor> textHoverColor_;
    std::optional<NSColor> textPressedColor_;
    std::optional<NSColor> textDisabledColor_;
    std::optional<NSGradient> backgroundTintGradient_;
    std::optional<NSGradient> backgroundHoverGradient_;
    std::optional<NSGradient> backgroundPressedGradient_;
    std::optional<NSGradient> backgroundDisabledGradient_;
    std::optional<double> backgroundGradientAngle_;
    std::optional<double> backgroundRadius_;
};

} // namespace zorvan
