#pragma once

#include <zorvan/colour/RGB.h>

namespace zorvan {

/// A colour by luma, from 0 to 1, and two colour differences.
struct YUV {
    double y = 0; ///< Luma, from 0 to 1.
    double u = 0; ///< Blue less luma, from -0.436 to 0.436.
    double v = 0; ///< Red less luma, from -0.615 to 0.615.

    constexpr YUV() noexcept = default;
    /// The components as they are.
    constexpr YUV(double y_, double u_, double v_) noexcept : y(y_), u(u_), v(v_) {}
    /// The conversion between the models, by the weights of BT.601; `rgb` clamps what its gamut
    /// does not have.
    /// @{
    explicit YUV(RGB rgb) noexcept;

    [[nodiscard]] RGB rgb() const noexcept { return RGB(*this); }
    /// @}

    friend constexpr bool operator==(const YUV&, const YUV&) = default;
};

inline YUV RGB::yuv() const noexcept { return YUV(*this); }

} // namespace zorvan
