#pragma once

#include <string>

namespace zorvan {

/// A colour by cyan, magenta, yellow, black and alpha, each from 0 to 1 by convention;
/// nothing clamps them.
struct CMYKA {
    double c = 0; ///< Cyan.
    double m = 0; ///< Magenta.
    double y = 0; ///< Yellow.
    double k = 0; ///< Black.
    double a = 0; ///< Alpha: 1 is opaque.

    constexpr CMYKA() noexcept = default;
    /// The components as they are.
    constexpr CMYKA(double c_, double m_, double y_, double k_, double a_) noexcept
        : c(c_), m(m_), y(y_), k(k_), a(a_) {}

    /// "CMYKA(0.0, 0.0, 0.0, 0.0, 0.0)"
    [[nodiscard]] std::string description() const;

    /// The colour of that name; `zero` is all 0, which is a transparent white.
    /// @{
    static const CMYKA zero, black, white, clear;
    /// @}

    friend constexpr bool operator==(const CMYKA&, const CMYKA&) = default;
};

inline constexpr CMYKA CMYKA::zero{0, 0, 0, 0, 0};
inline constexpr CMYKA CMYKA::black{0, 0, 0, 1, 1};
inline constexpr CMYKA CMYKA::white{0, 0, 0, 0, 1};
inline constexpr CMYKA CMYKA::clear{0, 0, 0, 1, 0};

} // namespace zorvan
