#pragma once

#include <cstdint>

namespace zorvan {

/// The innermost loops over pixels, in the best form that this processor runs.
struct PixelKernels {
    /// Copies pixels; past the caches when asked to, for results too large to stay in them.
    using Copy = void (*)(std::uint8_t* to, const std::uint8_t* from, std::int64_t count,
                          bool streaming);
    Copy copy;
    /// In reverse order.
    Copy reverse;
    /// The alpha component moved from last to first and back.
    Copy alphaFirst, alphaLast;
    /// Writes `rows` rows of `columns` pixels: pixel (x, y) is the source's (y, x).
    void (*transpose)(std::uint8_t* to, std::int64_t toBytesPerRow, const std::uint8_t* from,
                      std::int64_t fromBytesPerRow, std::int64_t columns, std::int64_t rows);
    /// Writes the weighted sums of `rowCount` rows of bytes that lie `bytesPerRow` apart.
    void (*weighRows)(float* sums, const std::uint8_t* firstRow, std::int64_t bytesPerRow,
                      const float* weights, std::int64_t rowCount, std::int64_t byteCount);
};

const PixelKernels& pixelKernels() noexcept;

} // namespace zorvan
