#pragma once

#include <cstdint>

namespace zorvan::imageio {

/// x / 255, rounded, for 0 <= x <= 255 * 255.
constexpr unsigned dividedBy255(unsigned x) noexcept { return (x + 128 + ((x + 128) >> 8)) >> 8; }

/// Multiplies the colour of RGBA pixels by their alpha.
void premultiply(std::uint8_t* pixels, std::int64_t count) noexcept;

/// The other way: colour as it was before the multiplication, as nearly as 8 bits tell; 0 where the
/// pixel is wholly transparent.
void unpremultiply(const std::uint8_t* premultiplied, std::uint8_t* out,
                   std::int64_t count) noexcept;

/// Multiplies by alpha, unless that is done already: then no colour is left that is more than its
/// alpha allows, as a broken file may state it.
void finishAlpha(std::uint8_t* pixels, std::int64_t count, bool isPremultiplied) noexcept;

/// The colour of ink on white paper, 0 meaning no ink, as opaque RGBA.
void inkToRgba(const std::uint8_t* cmyk, std::uint8_t* rgba, std::int64_t count) noexcept;

} // namespace zorvan::imageio
