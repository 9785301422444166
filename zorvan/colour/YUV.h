#pragma once

#include <zorvan/colour/RGB.h>

namespace zorvan {

/// A colour by luma, from 0 to 1, and two colour differences.
struct YUV {
    double y = 0;
    double u = 0;
    double v = 0;

    constexpr YUV() noexcept = default;
    constexpr YUV(double y_, double u_, double v_) noexcept : y(y_), u(u_), v(v_) {}
    explicit YUV(RGB rgb) noexcept;

    [[nodiscard]] RGB rgb() const noexcept { return RGB(*this); }

    friend constexpr bool operator==(const YUV&, const YUV&) = default;
};

inline YUV RGB::yuv() const noexcept { return YUV(*this); }

} // namespace zorvan
