#include <zorvan/colour/LAB.h>
#include <zorvan/colour/RGB.h>
#include <zorvan/colour/XYZ.h>
#include <zorvan/colour/YUV.h>
#include <zorvan/colour/internal/colorimetry.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <cmath>

namespace zorvan {

namespace {

std::uint8_t byteOf(double unit) noexcept {
    // In this order NaN becomes 0.
    const double v = std::min(std::max(0.0, unit * 255), 255.0);
    return static_cast<std::uint8_t>(std::round(v));
}

double companded(double c) noexcept {
    return c > 0.0031308 ? 1.055 * std::pow(c, 1 / 2.4) - 0.055 : 12.92 * c;
}

double inverseLabCurve(double f) noexcept {
    const double cube = f * f * f;
    return cube > 0.008856 ? cube : (f - 16.0 / 116) / 7.787;
}

} // namespace

RGB::RGB(Unit channels) noexcept
    : r(byteOf(channels.unitR)), g(byteOf(channels.unitG)), b(byteOf(channels.unitB)) {}

RGB::RGB(Bytes bytes) noexcept {
    const std::span<const std::uint8_t> all = bytes.rgbPtr;
    if (all.size() < 3 || bytes.at > all.size() - 3)
        fatalError("RGB needs three bytes from index " + std::to_string(bytes.at) +
                   " on; there are " + std::to_string(all.size()) + " in all.");
    r = all[bytes.at];
    g = all[bytes.at + 1];
    b = all[bytes.at + 2];
}

RGB::RGB(const XYZ& xyz) noexcept {
    const double x = xyz.x / 100;
    const double y = xyz.y / 100;
    const double z = xyz.z / 100;
    r = byteOf(companded(3.2406 * x - 1.5372 * y - 0.4986 * z));
    g = byteOf(companded(-0.9689 * x + 1.8758 * y + 0.0415 * z));
    b = byteOf(companded(0.0557 * x - 0.204 * y + 1.057 * z));
}

RGB::RGB(const YUV& yuv) noexcept
    : r(byteOf(yuv.y + 1.13983 * yuv.v)), g(byteOf(yuv.y - 0.39465 * yuv.u - 0.5806 * yuv.v)),
      b(byteOf(yuv.y + 2.03211 * yuv.u)) {}

NSColor RGB::nsColor() const noexcept {
    return NSColor({.red = r / 255.0, .green = g / 255.0, .blue = b / 255.0, .alpha = 1});
}

NSColor RGB::cpColor() const noexcept { return nsColor(); }

CGColor RGB::cgColor() const noexcept { return nsColor().cgColor(); }

XYZ::XYZ(RGB rgb) noexcept : XYZ(colorimetry::xyzOf(rgb, colorimetry::linearOfByte())) {}

XYZ::XYZ(const LAB& lab) noexcept {
    const double fy = (lab.l + 16) / 116;
    const double fx = lab.a / 500 + fy;
    const double fz = fy - lab.b / 200;
    x = inverseLabCurve(fx) * referenceX;
    y = inverseLabCurve(fy) * referenceY;
    z = inverseLabCurve(fz) * referenceZ;
}

LAB::LAB(const XYZ& xyz) noexcept : LAB(colorimetry::labOf(xyz)) {}

YUV::YUV(RGB rgb) noexcept {
    const double red = rgb.r / 255.0;
    const double green = rgb.g / 255.0;
    const double blue = rgb.b / 255.0;
    y = 0.299 * red + 0.587 * green + 0.114 * blue;
    u = -0.14713 * red - 0.28886 * green + 0.436 * blue;
    v = 0.615 * red - 0.51499 * green - 0.10001 * blue;
}

} // namespace zorvan
