#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/colour/NSGradient.h>

#include <optional>
#include <utility>

namespace zorvan {

namespace detail {

/// What a tinted button cell keeps.
struct Tints {
    std::optional<NSColor> imageTintColor, imageHoverColor, imagePressedColor, imageDisabledColor;
    std::optional<NSColor> textTintColor, textHoverColor, textPressedColor, textDisabledColor;
    std::optional<NSGradient> backgroundTintGradient, backgroundHoverGradient,
        backgroundPressedGradient, backgroundDisabledGradient;
    std::optional<double> backgroundGradientAngle;
    std::optional<double> backgroundRadius;
};

} // namespace detail

/// The colours and gradients that `TintedButtonCell` has for each state, and that `TintedButton`
/// passes on to its cell. All are absent at first, and of a button whose cell is not a tinted one,
/// where setting them does nothing. Each change marks the control for redisplay.
///
/// Disabled comes before pressed, pressed before hovered. A state without a value of its own shows
/// the tint; without a tint that part looks as it does in any button.
template <class Owner>
class TintProperties {
    using Color = std::optional<NSColor>;
    using Gradient = std::optional<NSGradient>;

public:
    /// The colour that the opaque parts of the image take, for each state.
    /// @{
    Color imageTintColor() const { return tints().imageTintColor; }
    void setImageTintColor(Color color) { set(&Tints::imageTintColor, std::move(color)); }
    Color imageHoverColor() const { return tints().imageHoverColor; }
    void setImageHoverColor(Color color) { set(&Tints::imageHoverColor, std::move(color)); }
    Color imagePressedColor() const { return tints().imagePressedColor; }
    void setImagePressedColor(Color color) { set(&Tints::imagePressedColor, std::move(color)); }
    Color imageDisabledColor() const { return tints().imageDisabledColor; }
    void setImageDisabledColor(Color color) { set(&Tints::imageDisabledColor, std::move(color)); }
    /// @}

    /// The colour of all of the title, whatever colours it has itself, for each state.
    /// @{
    Color textTintColor() const { return tints().textTintColor; }
    void setTextTintColor(Color color) { set(&Tints::textTintColor, std::move(color)); }
    Color textHoverColor() const { return tints().textHoverColor; }
    void setTextHoverColor(Color color) { set(&Tints::textHoverColor, std::move(color)); }
    Color textPressedColor() const { return tints().textPressedColor; }
    void setTextPressedColor(Color color) { set(&Tints::textPressedColor, std::move(color)); }
    Color textDisabledColor() const { return tints().textDisabledColor; }
    void setTextDisabledColor(Color color) { set(&Tints::textDisabledColor, std::move(color)); }
    /// @}

    /// What fills the bezel, for each state.
    /// @{
    Gradient backgroundTintGradient() const { return tints().backgroundTintGradient; }
    void setBackgroundTintGradient(Gradient gradient) {
        set(&Tints::backgroundTintGradient, std::move(gradient));
    }
    Gradient backgroundHoverGradient() const { return tints().backgroundHoverGradient; }
    void setBackgroundHoverGradient(Gradient gradient) {
        set(&Tints::backgroundHoverGradient, std::move(gradient));
    }
    Gradient backgroundPressedGradient() const { return tints().backgroundPressedGradient; }
    void setBackgroundPressedGradient(Gradient gradient) {
        set(&Tints::backgroundPressedGradient, std::move(gradient));
    }
    Gradient backgroundDisabledGradient() const { return tints().backgroundDisabledGradient; }
    void setBackgroundDisabledGradient(Gradient gradient) {
        set(&Tints::backgroundDisabledGradient, std::move(gradient));
    }
    /// @}

    /// In degrees, counter-clockwise from a gradient that goes from left to right; 0 when
    /// absent.
    /// @{
    std::optional<double> backgroundGradientAngle() const {
        return tints().backgroundGradientAngle;
    }
    void setBackgroundGradientAngle(std::optional<double> degrees) {
        set(&Tints::backgroundGradientAngle, degrees);
    }
    /// @}

    /// Of the corners of a bezel with a gradient, in points; 0 when absent, half of the shorter
    /// side at most.
    /// @{
    std::optional<double> backgroundRadius() const { return tints().backgroundRadius; }
    void setBackgroundRadius(std::optional<double> points) {
        set(&Tints::backgroundRadius, points);
    }
    /// @}

private:
    using Tints = detail::Tints;

    const Tints& tints() const noexcept { return static_cast<const Owner&>(*this).ownTints(); }
    template <class Value>
    void set(Value Tints::*field, Value value) {
        static_cast<Owner&>(*this).setTint(field, std::move(value));
    }

    friend Owner;
    TintProperties() = default;
};

} // namespace zorvan
