#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace zorvan {

class CGColor;
class NSColor;
struct XYZ;
struct YUV;

/// An sRGB colour with 8 bits a channel.
struct RGB {
    std::uint8_t r = 0; ///< Red.
    std::uint8_t g = 0; ///< Green.
    std::uint8_t b = 0; ///< Blue.

    /// Three reals from 0 to 1; what lies outside is clamped.
    struct Unit {
        Required<double> unitR; ///< Red.
        Required<double> unitG; ///< Green.
        Required<double> unitB; ///< Blue.
    };
    /// Three bytes out of many: red, green and blue.
    struct Bytes {
        Required<std::span<const std::uint8_t>> rgbPtr; ///< All there are.
        std::size_t at;                                 ///< The index of the red one.
    };

    constexpr RGB() noexcept = default;
    /// The channels as they are.
    constexpr RGB(std::uint8_t r_, std::uint8_t g_, std::uint8_t b_) noexcept
        : r(r_), g(g_), b(b_) {}
    /// From reals: times 255, clamped to 0 to 255 and rounded, halves up; NaN gives 0.
    explicit RGB(Unit channels) noexcept;
    /// From three bytes: `RGB({.rgbPtr = bytes, .at = 3 * i})`. Stops the program when there are
    /// fewer than three from that index on.
    explicit RGB(Bytes bytes) noexcept;
    /// Channels out of gamut are clamped.
    /// @{
    explicit RGB(const XYZ& xyz) noexcept;
    explicit RGB(const YUV& yuv) noexcept;
    /// @}

    /// The conversion to the other model.
    /// @{
    [[nodiscard]] XYZ xyz() const noexcept;
    [[nodiscard]] YUV yuv() const noexcept;
    /// @}

    /// Opaque.
    /// @{
    [[nodiscard]] NSColor nsColor() const noexcept;
    [[nodiscard]] NSColor cpColor() const noexcept;
    /// @}
    /// Opaque, for the drawing services.
    [[nodiscard]] CGColor cgColor() const noexcept;

    static const RGB black; ///< All channels 0.

    friend constexpr bool operator==(const RGB&, const RGB&) = default;
};

inline constexpr RGB RGB::black{0, 0, 0};

} // namespace zorvan

#include <zorvan/colour/NSColor.h>
#include <zorvan/colour/XYZ.h>
#include <zorvan/colour/YUV.h>
