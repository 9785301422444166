#include "TestPictures.h"
#include <tests/Testing.h>

#include <zorvan/platform/graphics/ExactTransforms.h>

namespace {

/// Where the pixel of the result at (x, y) stands in a source of w x h pixels.
std::pair<std::int64_t, std::int64_t> sourceOf(std::int64_t exifValue, std::int64_t x,
                                               std::int64_t y, std::int64_t w, std::int64_t h) {
    if (exifValue >= 5)
        std::swap(x, y);
    const bool fromRight = exifValue / 2 == 1 || exifValue >= 7;
    const bool fromBottom = exifValue == 3 || exifValue == 4 || exifValue == 6 || exifValue == 7;
    return {fromRight ? w - 1 - x : x, fromBottom ? h - 1 - y : y};
}

// Around the sizes of the blocks and of the vector registers, and one that is written past the
// caches.
const std::vector<std::pair<std::int64_t, std::int64_t>> sizes{
    {1, 1},   {1, 40},  {40, 1},  {7, 5},   {8, 8},    {9, 17},    {16, 16},    {17, 15},
    {31, 33}, {64, 20}, {513, 9}, {9, 513}, {300, 61}, {530, 521}, {1999, 1063}};

TEST(ExactTransforms, EachOrientationMovesEveryPixelToItsPlace) {
    for (const auto& [w, h] : sizes) {
        const Bitmap source = noiseBitmap(w, h);
        for (int value = 1; value <= 8; ++value) {
            const Bitmap result = oriented(source, value).value();
            ASSERT_EQ(result.width(), value >= 5 ? h : w);
            ASSERT_EQ(result.height(), value >= 5 ? w : h);
            std::int64_t wrong = 0;
            for (std::int64_t y = 0; y < result.height(); ++y)
                for (std::int64_t x = 0; x < result.width(); ++x) {
                    const auto [sx, sy] = sourceOf(value, x, y, w, h);
                    wrong += pixelAt(result, x, y) != pixelAt(source, sx, sy);
                }
            EXPECT_EQ(wrong, 0) << w << " x " << h << ", value " << value;
        }
    }
    for (std::int64_t value : {0L, 9L, -1L, std::numeric_limits<long>::max()})
        EXPECT_FALSE(oriented(noiseBitmap(3, 2), value)) << value;
}

TEST(ExactTransforms, ACropShowsItsWindowAndTransparencyBeyondThePicture) {
    constexpr std::int64_t furthest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    const Bitmap source = noiseBitmap(50, 30);
    const PixelRect windows[] = {{0, 0, 50, 30},   {10, 5, 20, 7},      {49, 29, 1, 1},
                                 {-3, -4, 60, 40}, {45, -2, 10, 10},    {-20, 10, 20, 5},
                                 {50, 0, 5, 5},    {furthest, 0, 3, 3}, {lowest, lowest, 3, 3}};
    for (const PixelRect& window : windows) {
        const Bitmap result = cropped(source, window).value();
        for (std::int64_t y = 0; y < window.height; ++y)
            for (std::int64_t x = 0; x < window.width; ++x) {
                const std::int64_t sx = window.x == furthest ? furthest : window.x + x;
                const std::int64_t sy = window.y + y;
                const bool isInside = sx >= 0 && sx < 50 && sy >= 0 && sy < 30;
                ASSERT_EQ(pixelAt(result, x, y), isInside ? pixelAt(source, sx, sy) : 0u)
                    << window.x << ',' << window.y << " at " << x << ',' << y;
            }
    }
    for (const PixelRect& refused :
         {PixelRect{0, 0, 0, 5}, PixelRect{0, 0, 5, -1}, PixelRect{0, 0, furthest, furthest}})
        EXPECT_FALSE(cropped(source, refused));
}

TEST(ExactTransforms, ACopyInTheOtherLayoutMovesAlphaToTheOtherEnd) {
    for (const auto& [w, h] : sizes) {
        const Bitmap source = noiseBitmap(w, h);
        const Bitmap argb = copied(source, BitmapLayout::argb).value();
        EXPECT_EQ(argb.layout(), BitmapLayout::argb);
        std::int64_t wrong = 0;
        for (std::int64_t i = 0; i < w * h; ++i)
            for (int c = 0; c < 4; ++c)
                wrong += argb.data()[i * 4 + (c + 1) % 4] != source.data()[i * 4 + c];
        EXPECT_EQ(wrong, 0) << w << " x " << h;
        const Bitmap back = copied(argb, BitmapLayout::rgba).value();
        EXPECT_EQ(std::memcmp(back.data(), source.data(), static_cast<std::size_t>(w * h * 4)), 0);
    }
}

TEST(Bitmap, IsTransparentEvenOnStorageThatWasInUseBefore) {
    for (int round = 0; round < 3; ++round) {
        Bitmap bitmap = Bitmap::make(1500, 1000).value();
        std::int64_t set = 0;
        for (std::int64_t i = 0; i < bitmap.byteCount(); ++i)
            set += bitmap.data()[i] != 0;
        ASSERT_EQ(set, 0) << round;
        std::memset(bitmap.data(), 0xAB, static_cast<std::size_t>(bitmap.byteCount()));
    }
}

TEST(Bitmap, SizesThatNoBitmapHasAreRefused) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    for (const auto& [w, h] : {std::pair<std::int64_t, std::int64_t>(0, 1),
                               {1, 0},
                               {-1, 5},
                               {most, most},
                               {1 << 15, (1 << 14) + 1}})
        EXPECT_FALSE(Bitmap::make(w, h)) << w << " x " << h;
}

} // namespace
