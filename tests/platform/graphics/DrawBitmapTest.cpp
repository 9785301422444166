#include "TestPictures.h"
#include <tests/Testing.h>

#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/graphics/drawBitmap.h>

namespace {

Bitmap drawn(const Bitmap& source, const CGAffineTransform& t, std::int64_t width,
             std::int64_t height) {
    Bitmap result = Bitmap::make(width, height, source.layout()).value();
    drawBitmap(source, t, result, Backdrop::transparent);
    return result;
}

/// The map, rows downwards, that turns and mirrors a picture of w x h as an EXIF value says.
CGAffineTransform turn(int exifValue, double w, double h) {
    const CGAffineTransform turns[] = {
        {1, 0, 0, 1, 0, 0}, {-1, 0, 0, 1, w, 0}, {-1, 0, 0, -1, w, h}, {1, 0, 0, -1, 0, h},
        {0, 1, 1, 0, 0, 0}, {0, 1, -1, 0, h, 0}, {0, -1, -1, 0, h, w}, {0, -1, 1, 0, 0, w}};
    return turns[exifValue - 1];
}

TEST(DrawBitmap, ATurnWithAStretchIsTheStretchOfTheTurned) {
    const Bitmap source = noiseBitmap(60, 44);
    for (int value = 1; value <= 8; ++value)
        for (const auto& [sx, sy] : {std::pair(0.35, 0.6), std::pair(1.7, 2.3), std::pair(0.5, 1.5),
                                     std::pair(1.0, 1.0)}) {
            const Bitmap upright = oriented(source, value).value();
            const CGAffineTransform stretch(sx, 0, 0, sy, 2.25, 1.5);
            const Bitmap once = drawn(source, turn(value, 60, 44).concatenating(stretch), 140, 150);
            const Bitmap twice = drawn(upright, stretch, 140, 150);
            EXPECT_LE(difference(once, twice).largest, 1) << value << ", " << sx << " x " << sy;
        }
}

TEST(DrawBitmap, WholePixelsThatReachBeyondTheTargetAreCutOff) {
    const Bitmap source = noiseBitmap(30, 20);
    for (int value = 1; value <= 8; ++value) {
        const Bitmap upright = oriented(source, value).value();
        for (const auto& [x, y] :
             {std::pair(-7, 5), std::pair(12, -3), std::pair(-4, -6), std::pair(9, 8)}) {
            const CGAffineTransform move(1, 0, 0, 1, x, y);
            const Bitmap result = drawn(source, turn(value, 30, 20).concatenating(move), 24, 22);
            const Bitmap expected = cropped(upright, {-x, -y, 24, 22}).value();
            EXPECT_EQ(difference(result, expected).largest, 0) << value << " at " << x << ',' << y;
        }
    }
}

TEST(DrawBitmap, TheBackdropIsOnlyAPromiseAndLayoutsGiveTheSamePicture) {
    const Bitmap source = noiseBitmap(50, 40);
    for (const CGAffineTransform& t :
         {CGAffineTransform(1, 0, 0, 1, 3, 4), CGAffineTransform(0.4, 0, 0, 2, 1, 1),
          CGAffineTransform(0, 1.5, -0.7, 0, 40, 2), CGAffineTransform(0.9, 0.4, -0.3, 0.8, 20, 5)})
        for (const BitmapLayout layout : {BitmapLayout::rgba, BitmapLayout::argb}) {
            const Bitmap shown = copied(source, layout).value();
            Bitmap direct = drawn(shown, t, 300, 90);
            Bitmap composited = Bitmap::make(300, 90).value();
            drawBitmap(source, t, composited, Backdrop::arbitrary);
            // Once more, over what is there now.
            drawBitmap(shown, t, direct, Backdrop::arbitrary);
            drawBitmap(source, t, composited, Backdrop::arbitrary);
            EXPECT_EQ(difference(copied(direct, BitmapLayout::rgba).value(), composited).largest,
                      0);
        }
}

TEST(DrawBitmap, ASlantedPictureShowsItsOwnPixelsAcrossTiles) {
    // A ramp is linear, so linear interpolation gives it back wherever the picture covers a pixel.
    Bitmap ramp = Bitmap::make(900, 700).value();
    for (std::int64_t y = 0; y < 700; ++y)
        for (std::int64_t x = 0; x < 900; ++x) {
            std::uint8_t* const pixel = ramp.row(y) + x * 4;
            pixel[0] = static_cast<std::uint8_t>(x * 255 / 900);
            pixel[1] = static_cast<std::uint8_t>(y * 255 / 700);
            pixel[3] = 255;
        }
    for (const auto& [scale, least, most] : {std::tuple(1.0, 500'000, 2), {0.05, 1'000, 3}}) {
        CGAffineTransform t({.translationX = 300, .y = 40});
        t.rotate(0.35);
        t = t.scaledBy(scale, scale);
        const Bitmap result = drawn(ramp, t, 1100, 1000);
        const CGRect whole = CGRect(0, 0, 900, 700).insetBy(2 / scale, 2 / scale);
        std::int64_t wrong = 0, inside = 0;
        for (std::int64_t y = 0; y < 1000; ++y)
            for (std::int64_t x = 0; x < 1100; ++x) {
                const CGPoint p =
                    CGPoint(static_cast<double>(x) + 0.5, static_cast<double>(y) + 0.5)
                        .applying(t.inverted());
                if (!whole.contains(p))
                    continue;
                ++inside;
                const std::uint8_t* const pixel = result.row(y) + x * 4;
                wrong += pixel[3] != 255 || std::abs(pixel[0] - p.x * 255 / 900) > most ||
                         std::abs(pixel[1] - p.y * 255 / 700) > most;
            }
        EXPECT_GT(inside, least);
        EXPECT_EQ(wrong, 0) << scale;
    }
}

TEST(DrawBitmap, APictureWiderThanFixedPointNumbersReachIsDrawn) {
    Bitmap wide = Bitmap::make(70000, 3).value();
    std::memset(wide.data(), 0xFF, static_cast<std::size_t>(wide.byteCount()));
    CGAffineTransform t({.translationX = -69000, .y = 0});
    t.rotate(0.001);
    const Bitmap result = drawn(wide, t, 1000, 80);
    double area = 0;
    for (std::int64_t i = 0; i < 1000 * 80; ++i)
        area += result.data()[i * 4 + 3] / 255.0;
    EXPECT_NEAR(area, 1000 * 3, 40);
}

} // namespace
