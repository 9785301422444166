#pragma once

#include <zorvan/colour/LAB.h>
#include <zorvan/colour/XYZ.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

// The steps from sRGB to L*a*b*, inline so that one colour and a whole buffer run the same code and
// give the same bits.

namespace zorvan::colorimetry {

using LinearTable = std::array<double, 256>;

/// The linear value, times 100, of every sRGB byte.
inline const LinearTable& linearOfByte() noexcept {
    static const LinearTable table = [] {
        LinearTable values{};
        for (std::size_t byte = 0; byte < values.size(); ++byte) {
            const double c = static_cast<double>(byte) / 255;
            values[byte] = (c > 0.04045 ? std::pow((c + 0.055) / 1.055, 2.4) : c / 12.92) * 100;
        }
        return values;
    }();
    return table;
}

inline XYZ xyzOf(RGB rgb, const LinearTable& linear) noexcept {
    const double r = linear[rgb.r];
    const double g = linear[rgb.g];
    const double b = linear[rgb.b];
    return {0.4124 * r + 0.3576 * g + 0.1805 * b, 0.2126 * r + 0.7152 * g + 0.0722 * b,
            0.0193 * r + 0.1192 * g + 0.9505 * b};
}

/// The cube root of a positive normal number, within two units in the last place.
inline double cubeRoot(double t) noexcept {
    // A third of the exponent, by way of the bits: within 4 %.
    const auto bits = std::bit_cast<std::uint64_t>(t);
    double y = std::bit_cast<double>(bits / 3 + 0x2A9F780000000000U);
    // One step of Halley's method brings that below 5e-5; three terms of the binomial series of
    // what then remains bring it below the precision of the type.
    const double cube = y * y * y;
    y *= (cube + 2 * t) / (2 * cube + t);
    const double d = (t - y * y * y) / (y * y * y);
    return y + y * (d * (1.0 / 3 + d * (-1.0 / 9 + d * (5.0 / 81))));
}

inline double labCurve(double t) noexcept {
    if (!(t > 0.008856))
        return 7.787 * t + 16.0 / 116;
    // Beyond every colour the plain function takes over, which also knows infinity.
    return t < 1e6 ? cubeRoot(t) : std::cbrt(t);
}

inline LAB labOf(const XYZ& xyz) noexcept {
    const double fx = labCurve(xyz.x / XYZ::referenceX);
    const double fy = labCurve(xyz.y / XYZ::referenceY);
    const double fz = labCurve(xyz.z / XYZ::referenceZ);
    return {116 * fy - 16, 500 * (fx - fy), 200 * (fy - fz)};
}

} // namespace zorvan::colorimetry
