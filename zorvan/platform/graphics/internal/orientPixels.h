#pragma once

#include <zorvan/platform/graphics/internal/PixelView.h>

namespace zorvan {

/// Whether an EXIF orientation value exchanges width and height.
constexpr bool swapsSides(std::int64_t exifValue) noexcept { return exifValue >= 5; }

/// Writes all of `target`, which has the sides of the turned source. The value is 1 to 8.
void orientPixels(ConstPixelView source, std::int64_t exifValue, PixelView target);

} // namespace zorvan
