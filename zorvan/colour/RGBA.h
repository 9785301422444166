#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <optional>
#include <string>
#include <string_view>

namespace zorvan {

/// A colour by red, green, blue and alpha, each from 0 to 1 by convention; nothing clamps them.
///
/// Stored in the order red, blue, green, alpha; made, printed and written in hexadecimal in the
/// order red, green, blue, alpha.
struct RGBA {
    double r = 0; ///< Red.
    double b = 0; ///< Blue.
    double g = 0; ///< Green.
    double a = 0; ///< Alpha: 1 is opaque.

    /// The components in the order they are spoken of, not clamped.
    struct Components {
        Required<double> r; ///< Red.
        Required<double> g; ///< Green.
        Required<double> b; ///< Blue.
        Required<double> a; ///< Alpha: 1 is opaque.
    };
    /// A text for `make`.
    struct HexString {
        Required<std::string_view> hexString;
    };

    constexpr RGBA() noexcept = default;
    /// The components as they are, not clamped.
    /// @{
    constexpr RGBA(double r_, double g_, double b_, double a_) noexcept
        : r(r_), b(b_), g(g_), a(a_) {}
    explicit constexpr RGBA(Components c) noexcept : RGBA(c.r, c.g, c.b, c.a) {}
    /// @}

    /// Reads "#RGB", "#RGBA", "#RRGGBB" or "#RRGGBBAA": `RGBA::make({.hexString = "#F80"})`.
    ///
    /// White space is skipped before the "#" and before the digits, "0x" may stand before the
    /// digits, and whatever follows them is ignored; but every character after the first one of the
    /// text counts towards the 3, 4, 6 or 8 that choose the form, and the digits are read as one
    /// number whose low bits are the components. A character is a
    /// Unicode code point, or a carriage return with the line feed after it.
    ///
    /// Absent without a "#", without a digit, and for another count of characters; the latter also
    /// prints a line on standard output.
    [[nodiscard]] static std::optional<RGBA> make(HexString argument);

    /// "#FF8000" when `a` is 1, else "#FF800080": each component times 255, truncated. A component
    /// outside 0 to 1 gives the hexadecimal digits of the low 32 bits of that integer.
    [[nodiscard]] std::string hexString() const;

    /// "RGBA(1.0, 0.5, 0.0, 1.0)"
    [[nodiscard]] std::string description() const;

    /// The colour of that name; `zero` is all 0, as `clear` is.
    /// @{
    static const RGBA zero, black, white, clear;
    /// @}

    friend constexpr bool operator==(const RGBA&, const RGBA&) = default;
};

inline constexpr RGBA RGBA::zero{0, 0, 0, 0};
inline constexpr RGBA RGBA::black{0, 0, 0, 1};
inline constexpr RGBA RGBA::white{1, 1, 1, 1};
inline constexpr RGBA RGBA::clear{0, 0, 0, 0};

} // namespace zorvan
