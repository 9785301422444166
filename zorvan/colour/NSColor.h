#pragma once

#include <zorvan/colour/CGColor.h>
#include <zorvan/colour/RGBA.h>
#include <zorvan/platform/foundation/Required.h>

#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

class NSGradient;

/// A colour as interfaces hold it: a value that never changes. It remembers whether it was made as
/// a grey or as a mixture of red, green and blue; every colour can be read as the latter.
/// Components are clamped to 0 to 1; NaN becomes 0.
class NSColor {
public:
    /// A mixture of red, green and blue, each from 0 to 1; what lies outside is clamped.
    struct Components {
        Required<double> red;   ///< From 0 to 1.
        Required<double> green; ///< From 0 to 1.
        Required<double> blue;  ///< From 0 to 1.
        Required<double> alpha; ///< 1 is opaque.
    };
    /// A grey.
    struct White {
        Required<double> white; ///< From 0, black, to 1, white.
        Required<double> alpha; ///< 1 is opaque.
    };
    /// What `RGBA::make` reads.
    struct HexString {
        Required<std::string_view> hexString;
    };

    /// `NSColor({.red = 1, .green = 0.5, .blue = 0, .alpha = 1})`.
    explicit constexpr NSColor(Components c) noexcept
        : NSColor(RGBA(c.red, c.green, c.blue, c.alpha)) {}
    /// From red, green, blue and alpha, also when the first three are equal: the space is `rgb`.
    explicit constexpr NSColor(const RGBA& rgba) noexcept
        : color_(CGColor::create({.rgba = rgba})) {}
    /// A grey: `NSColor({.white = 0.5, .alpha = 1})`.
    explicit constexpr NSColor(White grey) noexcept
        : color_(CGColor::create({.gray = grey.white, .alpha = grey.alpha})) {}
    /// The same colour and space.
    explicit constexpr NSColor(const CGColor& color) noexcept : color_(color) {}
    /// Absent when `RGBA` does not parse the text.
    [[nodiscard]] static std::optional<NSColor> make(HexString argument);

    /// `black` to `white` are greys: `darkGray` a third, `gray` a half and `lightGray` two thirds
    /// white. `clear` is transparent black. The others mix red, green and blue.
    /// @{
    static const NSColor black, blue, brown, clear, cyan, darkGray, gray, green, lightGray, magenta,
        orange, purple, red, white, yellow;
    /// @}

    /// As it was made.
    [[nodiscard]] constexpr ColorSpace colorSpace() const noexcept { return color_.colorSpace(); }
    /// From 0 to 1. Of a grey the first three are equal.
    /// @{
    [[nodiscard]] constexpr double redComponent() const noexcept { return rgba().r; }
    [[nodiscard]] constexpr double greenComponent() const noexcept { return rgba().g; }
    [[nodiscard]] constexpr double blueComponent() const noexcept { return rgba().b; }
    [[nodiscard]] constexpr double alphaComponent() const noexcept { return rgba().a; }
    [[nodiscard]] constexpr RGBA rgba() const noexcept { return color_.rgba(); }
    /// @}
    /// As `RGBA::hexString()`: six digits when opaque, else eight.
    [[nodiscard]] std::string hexString() const { return rgba().hexString(); }
    /// The same colour for the drawing services.
    [[nodiscard]] constexpr CGColor cgColor() const noexcept { return color_; }
    /// The gradient of this colour alone; every colour has one. Declared in
    /// <zorvan/colour/NSGradient.h>.
    [[nodiscard]] std::optional<NSGradient> gradient() const;

    /// The same colour at another opacity; it is clamped to 0 to 1.
    [[nodiscard]] constexpr NSColor withAlphaComponent(double alpha) const noexcept {
        return withComponents({rgba().r, rgba().g, rgba().b, alpha}, colorSpace());
    }
    /// This colour moved by `fraction`, clamped to 0 to 1, of the way to the other, component by
    /// component. Two greys give a grey.
    [[nodiscard]] NSColor blended(double fraction, const NSColor& of) const noexcept;
    /// Blended by `1 - alpha` with this colour's own transparent version: the alpha component
    /// multiplied.
    [[nodiscard]] NSColor withAlphaBlending(double alpha) const noexcept {
        return blended(1 - alpha, withAlphaComponent(0));
    }

    /// Equal in space and components.
    friend constexpr bool operator==(const NSColor&, const NSColor&) = default;

    /// Of <zorvan/media/NSColor.h>; here, so that only calls with a colour find it, and `set` stays
    /// the standard one for everybody else.
    friend void set(const NSColor& color);

private:
    static constexpr NSColor withComponents(const RGBA& c, ColorSpace space) noexcept {
        return space == ColorSpace::gray ? NSColor({.white = c.r, .alpha = c.a}) : NSColor(c);
    }

    CGColor color_;
};

inline constexpr NSColor NSColor::black{White{0, 1}};
inline constexpr NSColor NSColor::darkGray{White{1.0 / 3, 1}};
inline constexpr NSColor NSColor::gray{White{0.5, 1}};
inline constexpr NSColor NSColor::lightGray{White{2.0 / 3, 1}};
inline constexpr NSColor NSColor::white{White{1, 1}};
inline constexpr NSColor NSColor::clear{White{0, 0}};
inline constexpr NSColor NSColor::red{Components{1, 0, 0, 1}};
inline constexpr NSColor NSColor::green{Components{0, 1, 0, 1}};
inline constexpr NSColor NSColor::blue{Components{0, 0, 1, 1}};
inline constexpr NSColor NSColor::cyan{Components{0, 1, 1, 1}};
inline constexpr NSColor NSColor::magenta{Components{1, 0, 1, 1}};
inline constexpr NSColor NSColor::yellow{Components{1, 1, 0, 1}};
inline constexpr NSColor NSColor::orange{Components{1, 0.5, 0, 1}};
inline constexpr NSColor NSColor::purple{Components{0.5, 0, 0.5, 1}};
inline constexpr NSColor NSColor::brown{Components{0.6, 0.4, 0.2, 1}};

inline constexpr CGColor CGColor::blue = NSColor::blue.cgColor();
inline constexpr CGColor CGColor::brown = NSColor::brown.cgColor();
inline constexpr CGColor CGColor::cyan = NSColor::cyan.cgColor();
inline constexpr CGColor CGColor::darkGray = NSColor::darkGray.cgColor();
inline constexpr CGColor CGColor::gray = NSColor::gray.cgColor();
inline constexpr CGColor CGColor::green = NSColor::green.cgColor();
inline constexpr CGColor CGColor::lightGray = NSColor::lightGray.cgColor();
inline constexpr CGColor CGColor::magenta = NSColor::magenta.cgColor();
inline constexpr CGColor CGColor::orange = NSColor::orange.cgColor();
inline constexpr CGColor CGColor::purple = NSColor::purple.cgColor();
inline constexpr CGColor CGColor::red = NSColor::red.cgColor();
inline constexpr CGColor CGColor::yellow = NSColor::yellow.cgColor();

constexpr std::optional<NSColor> CGColor::nsColor() const noexcept { return NSColor(*this); }

} // namespace zorvan
