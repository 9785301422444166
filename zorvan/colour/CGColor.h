#pragma once

#include <zorvan/colour/RGBA.h>
#include <zorvan/platform/foundation/Required.h>

#include <optional>
#include <string_view>
#include <vector>

namespace zorvan {

class NSColor;

/// The model a platform colour was made in.
enum class ColorSpace { gray, rgb };

/// A colour as the drawing services take it. It remembers whether it was made as a grey or as a
/// mixture of red, green and blue, and can be read as either the latter or its own components.
/// Components are clamped to 0 to 1; NaN becomes 0.
class CGColor {
public:
    /// A grey.
    struct Gray {
        Required<double> gray;  ///< From 0, black, to 1, white.
        Required<double> alpha; ///< 1 is opaque.
    };
    /// A mixture of red, green and blue.
    struct FromRGBA {
        Required<RGBA> rgba;
    };
    /// What `RGBA::make` reads.
    struct HexString {
        Required<std::string_view> hexString;
    };
    /// `CGColor::create({.gray = 0.5, .alpha = 1})`.
    [[nodiscard]] static constexpr CGColor create(Gray argument) noexcept {
        return {ColorSpace::gray, {argument.gray, argument.gray, argument.gray, argument.alpha}};
    }
    /// From red, green, blue and alpha, also when the first three are equal: the space is `rgb`.
    [[nodiscard]] static constexpr CGColor create(FromRGBA argument) noexcept {
        return {ColorSpace::rgb, argument.rgba};
    }
    /// Absent when `RGBA` does not parse the text.
    [[nodiscard]] static std::optional<CGColor> create(HexString argument);

    /// Opaque, each channel one of the hundred values 0, 0.01, ..., 0.99.
    [[nodiscard]] static CGColor randomColor();

    /// The `NSColor` of that name. There is no black, white or clear here.
    /// @{
    static const CGColor blue, brown, cyan, darkGray, gray, green, lightGray, magenta, orange,
        purple, red, yellow;
    /// @}

    /// As it was made.
    [[nodiscard]] constexpr ColorSpace colorSpace() const noexcept { return space_; }
    /// As red, green, blue and alpha; the first three are equal for a grey.
    [[nodiscard]] constexpr RGBA rgba() const noexcept { return rgba_; }
    /// 1 is opaque.
    [[nodiscard]] constexpr double alpha() const noexcept { return rgba_.a; }
    /// Grey and alpha, or red, green, blue and alpha.
    [[nodiscard]] std::vector<double> components() const;

    /// The same colour for the interface; every colour can be converted.
    [[nodiscard]] constexpr std::optional<NSColor> nsColor() const noexcept;

    /// Equal in space and components.
    friend constexpr bool operator==(const CGColor&, const CGColor&) = default;

private:
    static constexpr double clamped(double component) noexcept {
        const double raised = component > 0 ? component : 0;
        return raised < 1 ? raised : 1;
    }
    constexpr CGColor(ColorSpace space, const RGBA& c) noexcept
        : space_(space), rgba_(clamped(c.r), clamped(c.g), clamped(c.b), clamped(c.a)) {}

    ColorSpace space_;
    RGBA rgba_;
};

} // namespace zorvan

#include <zorvan/colour/NSColor.h>
