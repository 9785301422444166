#pragma once

#include <zorvan/media/CGImage.h>

#include <cstdint>
#include <cstring>
#include <random>

namespace zorvan {

/// Random colours, premultiplied by random alpha.
inline CGImage::Pointer noise(std::int64_t width, std::int64_t height) {
    Bitmap bitmap = Bitmap::make(width, height).value();
    std::mt19937 random(static_cast<unsigned>(width * 31 + height));
    for (std::int64_t i = 0; i < width * height; ++i) {
        const unsigned alpha = random() % 256;
        for (int c = 0; c < 4; ++c)
            bitmap.data()[i * 4 + c] =
                static_cast<std::uint8_t>(c == 3 ? alpha : random() % (alpha + 1));
    }
    return CGImage::create(std::move(bitmap));
}

/// One colour all over, given as bytes in memory order.
inline CGImage::Pointer plain(std::int64_t width, std::int64_t height, std::uint32_t pixel) {
    Bitmap bitmap = Bitmap::make(width, height).value();
    for (std::int64_t i = 0; i < width * height; ++i)
        std::memcpy(bitmap.data() + i * 4, &pixel, 4);
    return CGImage::create(std::move(bitmap));
}

/// Column and row counted from the top left.
inline std::uint32_t pixelAt(const CGImage& image, std::int64_t x, std::int64_t y) {
    std::uint32_t pixel;
    std::memcpy(&pixel, image.uint8Data() + image.offset(x, y), 4);
    return pixel;
}

inline bool haveSamePixels(const CGImage& a, const CGImage& b) {
    return a.width() == b.width() && a.height() == b.height() &&
           a.bitmap().layout() == b.bitmap().layout() &&
           std::memcmp(a.uint8Data(), b.uint8Data(),
                       static_cast<std::size_t>(a.bitmap().byteCount())) == 0;
}

} // namespace zorvan
