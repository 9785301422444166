#pragma once

#include <zorvan/platform/graphics/Bitmap.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

namespace zorvan {

/// Random colours, premultiplied by random alpha.
inline Bitmap noiseBitmap(std::int64_t width, std::int64_t height,
                          BitmapLayout layout = BitmapLayout::rgba) {
    Bitmap bitmap = Bitmap::make(width, height, layout).value();
    std::mt19937 random(static_cast<unsigned>(width * 31 + height));
    for (std::int64_t i = 0; i < width * height; ++i) {
        std::uint8_t* const pixel = bitmap.data() + i * 4;
        const unsigned alpha = random() % 256;
        const int alphaIndex = layout == BitmapLayout::rgba ? 3 : 0;
        for (int c = 0; c < 4; ++c)
            pixel[c] = static_cast<std::uint8_t>(c == alphaIndex ? alpha : random() % (alpha + 1));
    }
    return bitmap;
}

inline std::uint32_t pixelAt(const Bitmap& bitmap, std::int64_t x, std::int64_t y) {
    std::uint32_t pixel;
    std::memcpy(&pixel, bitmap.row(y) + x * 4, 4);
    return pixel;
}

inline std::array<int, 4> componentsAt(const Bitmap& bitmap, std::int64_t x, std::int64_t y) {
    const std::uint8_t* pixel = bitmap.row(y) + x * 4;
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

/// The mean and the largest difference of components; infinite when the sizes differ.
struct Difference {
    double mean;
    int largest;
};
inline Difference difference(const Bitmap& a, const Bitmap& b) {
    if (a.width() != b.width() || a.height() != b.height())
        return {std::numeric_limits<double>::infinity(), 256};
    Difference result = {0, 0};
    for (std::int64_t i = 0; i < a.byteCount(); ++i) {
        const int distance = std::abs(a.data()[i] - b.data()[i]);
        result.mean += distance;
        result.largest = std::max(result.largest, distance);
    }
    result.mean /= static_cast<double>(a.byteCount());
    return result;
}

} // namespace zorvan
