#pragma once

#include <string>

namespace zorvan {

/// A colour by hue, saturation, brightness and alpha, each from 0 to 1 by convention;
/// nothing clamps them.
struct HSBA {
    double h = 0; ///< Hue.
    double s = 0; ///< Saturation.
    double b = 0; ///< Brightness.
    double a = 0; ///< Alpha: 1 is opaque.

    constexpr HSBA() noexcept = default;
    /// The components as they are.
    constexpr HSBA(double h_, double s_, double b_, double a_) noexcept
        : h(h_), s(s_), b(b_), a(a_) {}

    /// "HSBA(0.0, 0.0, 0.0, 0.0)"
    [[nodiscard]] std::string description() const;

    /// The colour of that name; `zero` is all 0, as `clear` is.
    /// @{
    static const HSBA zero, black, white, clear;
    /// @}

    friend constexpr bool operator==(const HSBA&, const HSBA&) = default;
};

inline constexpr HSBA HSBA::zero{0, 0, 0, 0};
inline constexpr HSBA HSBA::black{0, 0, 0, 1};
inline constexpr HSBA HSBA::white{0, 0, 1, 1};
inline constexpr HSBA HSBA::clear{0, 0, 0, 0};

} // namespace zorvan
