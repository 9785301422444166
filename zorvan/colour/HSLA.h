#pragma once

#include <string>

namespace zorvan {

/// A colour by hue, saturation, lightness and alpha, each from 0 to 1 by convention;
/// nothing clamps them.
struct HSLA {
    double h = 0; ///< Hue.
    double s = 0; ///< Saturation.
    double l = 0; ///< Lightness.
    double a = 0; ///< Alpha: 1 is opaque.

    constexpr HSLA() noexcept = default;
    /// The components as they are.
    constexpr HSLA(double h_, double s_, double l_, double a_) noexcept
        : h(h_), s(s_), l(l_), a(a_) {}

    /// "HSLA(0.0, 0.0, 0.0, 0.0)"
    [[nodiscard]] std::string description() const;

    /// The colour of that name; `zero` is all 0, as `clear` is.
    /// @{
    static const HSLA zero, black, white, clear;
    /// @}

    friend constexpr bool operator==(const HSLA&, const HSLA&) = default;
};

inline constexpr HSLA HSLA::zero{0, 0, 0, 0};
inline constexpr HSLA HSLA::black{0, 0, 0, 1};
inline constexpr HSLA HSLA::white{0, 0, 1, 1};
inline constexpr HSLA HSLA::clear{0, 0, 0, 0};

} // namespace zorvan
