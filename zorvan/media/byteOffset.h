#pragma once

#include <zorvan/platform/foundation/fatalError.h>

#include <cstdint>
#include <string>

namespace zorvan {

/// `bytesPerRow * y + (bitsPerPixel / bitsPerComponent) * x`, which is where pixel (x, y) begins in
/// a bitmap of 8 bits a component. No bits in a component, or a result outside the signed 64-bit
/// range, stops the program.
inline std::int64_t byteOffset(std::int64_t bytesPerRow, std::int64_t bitsPerPixel,
                               std::int64_t bitsPerComponent, std::int64_t x,
                               std::int64_t y) noexcept {
    std::int64_t rows, pixels, offset;
    if (bitsPerComponent == 0)
        fatalError("A bitmap without bits in a component has no byte offsets.");
    if (__builtin_mul_overflow(bytesPerRow, y, &rows) ||
        __builtin_mul_overflow(bitsPerPixel / bitsPerComponent, x, &pixels) ||
        __builtin_add_overflow(rows, pixels, &offset))
        fatalError("The byte offset of pixel (" + std::to_string(x) + ", " + std::to_string(y) +
                   ") is outside the signed 64-bit range.");
    return offset;
}

} // namespace zorvan
