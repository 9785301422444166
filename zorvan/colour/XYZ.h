#pragma once

#include <zorvan/colour/RGB.h>

namespace zorvan {

struct LAB;

/// A colour by CIE 1931 tristimulus values under D65; Y of white is 100.
struct XYZ {
    double x = 0; ///< Not divided by 100.
    double y = 0; ///< The luminance.
    double z = 0; ///< Not divided by 100.

    static constexpr double referenceX = 95.047;  ///< The `x` of white.
    static constexpr double referenceY = 100;     ///< The `y` of white.
    static constexpr double referenceZ = 108.883; ///< The `z` of white.

    constexpr XYZ() noexcept = default;
    /// The values as they are.
    constexpr XYZ(double x_, double y_, double z_) noexcept : x(x_), y(y_), z(z_) {}
    /// The conversion between the models. `rgb` clamps what its gamut does not have.
    /// @{
    explicit XYZ(RGB rgb) noexcept;
    explicit XYZ(const LAB& lab) noexcept;

    [[nodiscard]] RGB rgb() const noexcept { return RGB(*this); }
    [[nodiscard]] LAB lab() const noexcept;
    /// @}

    friend constexpr bool operator==(const XYZ&, const XYZ&) = default;
};

inline XYZ RGB::xyz() const noexcept { return XYZ(*this); }

} // namespace zorvan

#include <zorvan/colour/LAB.h>
