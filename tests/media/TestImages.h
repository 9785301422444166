#pragma once

#include <zorvan/media/CGContext.h>
#include <zorvan/media/CGImage.h>
#include <zorvan/media/NSGraphicsContext.h>

#include <tests/platform/graphics/TestPictures.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace zorvan {

/// Random colours, premultiplied by random alpha.
inline CGImage::Pointer noise(std::int64_t width, std::int64_t height) {
    return CGImage::create(noiseBitmap(width, height));
}

/// One colour all over, given as bytes in memory order.
inline CGImage::Pointer plain(std::int64_t width, std::int64_t height, std::uint32_t pixel) {
    Bitmap bitmap = Bitmap::make(width, height).value();
    for (std::int64_t i = 0; i < width * height; ++i)
        std::memcpy(bitmap.data() + i * 4, &pixel, 4);
    return CGImage::create(std::move(bitmap));
}

/// What is drawn in the current graphics context, in which y may grow downward.
template <class Body>
CGImage::Pointer drawnIn(std::int64_t width, std::int64_t height, bool isFlipped, Body body) {
    return CGImage::draw(width, height, [&](CGContext& context) {
        if (isFlipped)
            context.concatenate({1, 0, 0, -1, 0, static_cast<double>(height)});
        NSGraphicsContext::use(NSGraphicsContext::create(context.shared_from_this(), isFlipped),
                               body);
    });
}

/// Column and row counted from the top left.
inline std::uint32_t pixelAt(const CGImage& image, std::int64_t x, std::int64_t y) {
    return pixelAt(image.bitmap(), x, y);
}

/// Compares every pixel with the one that `wanted` gives for its column and row.
template <class Wanted>
void expectPixels(const CGImage& image, Wanted wanted) {
    for (std::int64_t y = 0; y < image.height(); ++y)
        for (std::int64_t x = 0; x < image.width(); ++x)
            ASSERT_EQ(pixelAt(image, x, y), wanted(x, y)) << x << ',' << y;
}

/// The mean distance of all components.
inline double meanDifference(const CGImage& a, const CGImage& b) {
    return difference(a.bitmap(), b.bitmap()).mean;
}

inline bool haveSamePixels(const CGImage& a, const CGImage& b) {
    return a.width() == b.width() && a.height() == b.height() &&
           a.bitmap().layout() == b.bitmap().layout() &&
           std::memcmp(a.uint8Data(), b.uint8Data(),
                       static_cast<std::size_t>(a.bitmap().byteCount())) == 0;
}

} // namespace zorvan
