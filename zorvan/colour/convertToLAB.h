#pragma once

#include <zorvan/colour/LAB.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace zorvan {

/// Converts sRGB pixels to L*a*b*, with the same results as `RGB(...).xyz().lab()` bit for bit.
///
/// A pixel is `bytesPerPixel` bytes, 3 or more, of which the first three are red, green and blue.
/// Converts as many whole pixels as there are, but no more than there is room for in `result`, and
/// returns that number. Stops the program when a pixel has fewer than three bytes.
std::size_t convertToLAB(std::span<const std::uint8_t> pixels, std::span<LAB> result,
                         std::size_t bytesPerPixel = 3) noexcept;

} // namespace zorvan
