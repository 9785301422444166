#include "TestImages.h"
#include <tests/Testing.h>

#include <zorvan/media/CGContext.h>
#include <zorvan/media/ExifOrientationGeometry.h>
#include <zorvan/platform/graphics/AreaDownscaler.h>

#include <numbers>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

/// The pixels of `image` drawn under `t` (y upwards) into a bitmap, one by one.
void expectDrawn(const CGImage& result, const CGImage& image, const CGAffineTransform& t,
                 std::int64_t value) {
    for (std::int64_t y = 0; y < image.height(); ++y)
        for (std::int64_t x = 0; x < image.width(); ++x) {
            const CGPoint centre(static_cast<double>(x) + 0.5,
                                 static_cast<double>(image.height() - y) - 0.5);
            const CGPoint p = centre.applying(t);
            const auto column = static_cast<std::int64_t>(std::floor(p.x));
            const auto row = result.height() - 1 - static_cast<std::int64_t>(std::floor(p.y));
            ASSERT_TRUE(column >= 0 && column < result.width() && row >= 0 &&
                        row < result.height());
            ASSERT_EQ(pixelAt(result, column, row), pixelAt(image, x, y)) << value;
        }
}

TEST(CGImage, AnOrientationIsTheDrawingThatItsGeometryDescribes) {
    const auto image = noise(37, 23);
    for (std::int64_t value = 1; value <= 8; ++value) {
        const auto geometry = ExifOrientationGeometry::make({.exifValue = value}).value();
        const auto result = image->oriented(value);
        ASSERT_EQ(result->width(), geometry.swapsSides ? 23 : 37);
        ASSERT_EQ(result->height(), geometry.swapsSides ? 37 : 23);
        CGAffineTransform t(
            {.translationX = result->size().width / 2, .y = result->size().height / 2});
        t.rotate(geometry.angle);
        t.scaleBy(geometry.scaleX, geometry.scaleY);
        t.translateBy(-37 * 0.5, -23 * 0.5);
        expectDrawn(*result, *image, t, value);

        // The same through a context, which has to find out that whole pixels are moved.
        const auto drawn =
            CGImage::draw(result->width(), result->height(), [&](CGContext& context) {
                context.concatenate(t);
                context.draw(*image, image->rect());
            });
        EXPECT_TRUE(haveSamePixels(*drawn, *result)) << value;
        EXPECT_TRUE(haveSamePixels(*result->unoriented(value), *image)) << value;
    }
    EXPECT_EQ(image->unoriented(1), image);
    for (std::int64_t value : {std::int64_t{0}, std::int64_t{9}, INT64_MIN}) {
        EXPECT_EQ(image->oriented(value), nullptr);
        EXPECT_EQ(image->unoriented(value), nullptr);
    }
    EXPECT_TRUE(haveSamePixels(*image->oriented(std::int64_t{8}), *image->rotatedLeft()));
    EXPECT_TRUE(haveSamePixels(*image->oriented(std::int64_t{6}), *image->rotatedRight()));
}

TEST(CGImage, ACameraOrientationIsTheDrawingUnderItsTransform) {
    const auto image = noise(40, 30);
    const double quarter = std::numbers::pi / 2;
    const CGAffineTransform none;
    struct {
        std::int64_t value;
        CGAffineTransform transform;
        CGSize size;
        const char* printed;
    } const table[] = {
        {1, none.translatedBy(0, 40).rotatedBy(-quarter), {30, 40}, ""},
        {2, none.translatedBy(30, 0).rotatedBy(quarter), {30, 40}, ""},
        {3, none, {40, 30}, ""},
        {4, none.translatedBy(40, 30).scaledBy(-1, -1), {40, 30}, ""},
        {7, none, {40, 30}, "NOT SUPPORTED AVCAPTUREVIDEOORIENTATION\n"},
    };
    for (const auto& [value, transform, size, printed] : table) {
        testing::internal::CaptureStdout();
        const auto result = image->oriented(static_cast<AVCaptureVideoOrientation>(value));
        EXPECT_EQ(testing::internal::GetCapturedStdout(), printed);
        EXPECT_EQ(result->size(), size);
        EXPECT_NE(result, image);
        expectDrawn(*result, *image, transform, value);
    }
}

TEST(CGImage, FittingAndResizingPaintEveryPixel) {
    // Also where the target ends inside a pixel, what is opaque stays opaque.
    const std::uint32_t colour = 0xFF336699;
    const auto isColour = [&](std::int64_t, std::int64_t) { return colour; };
    const auto wide = plain(400, 200, colour);
    for (const auto& [box, size] : {std::pair(CGSize(100, 100), CGSize(100, 50)),
                                    {{300, 50}, {100, 50}},
                                    {{800, 800}, {800, 400}},
                                    {{33, 1000}, {33, 17}}}) {
        const auto result = wide->fitting(box);
        EXPECT_EQ(result->size(), size);
        expectPixels(*result, isColour);
    }
    for (double width = 0.5; width < 250; width += 12.375)
        for (double height : {0.5, 60.5, 61.49999}) {
            const auto result = wide->resizing({width, height});
            ASSERT_EQ(result->size(), CGSize(std::round(width), std::round(height)));
            expectPixels(*result, isColour);
        }
}

TEST(CGImage, ShrinkingIsTheExactAreaAverageAndEnlargingKeepsColourWithinAlpha) {
    const auto image = noise(131, 87);
    Bitmap average = Bitmap::make(40, 20).value();
    areaDownscale(image->bitmap(), average, {0, 20});
    EXPECT_TRUE(haveSamePixels(*image->resizing({40, 20}), *CGImage::create(std::move(average))));
    const auto enlarged = noise(9, 7)->resizing({100, 90});
    for (std::int64_t i = 0; i < 100 * 90 * 4; ++i)
        ASSERT_LE(enlarged->uint8Data()[i], enlarged->uint8Data()[i | 3]);
}

TEST(CGImage, CroppingShowsTheMiddle) {
    const auto image = noise(40, 20);
    const auto quarter = image->cropping({.percent = 0.25});
    ASSERT_EQ(quarter->size(), CGSize(20, 10));
    expectPixels(*quarter, [&](auto x, auto y) { return pixelAt(*image, x + 10, y + 5); });
    EXPECT_EQ(image->cropping({.px = 0.25, .py = 0.5 - 1 / 32.0})->size(), CGSize(20, 1));
    const auto enlarged = image->cropping({.dx = -2, .dy = -1});
    ASSERT_EQ(enlarged->size(), CGSize(44, 22));
    expectPixels(*enlarged, [&](auto x, auto y) {
        const bool isMargin = x < 2 || x >= 42 || y < 1 || y >= 21;
        return isMargin ? 0 : pixelAt(*image, x - 2, y - 1);
    });
}

TEST(CGImage, ATransformIsNotBroughtBackToTheOrigin) {
    const auto image = noise(20, 10);
    const auto scaled = image->applying(CGAffineTransform(1, 0, 0, 1, 5, -3));
    ASSERT_EQ(scaled->width(), 20);
    expectPixels(*scaled, [&](auto x, auto y) {
        return x >= 5 && y >= 3 ? pixelAt(*image, x - 5, y - 3) : 0;
    });
    // A turn about the origin carries all of it off the bitmap.
    const auto gone = image->applying(CGAffineTransform({.rotationAngle = std::numbers::pi}));
    EXPECT_TRUE(haveSamePixels(*gone, *CGImage::empty(20, 10)));
}

TEST(CGImage, CopiesAreOfTheirOwnInEitherLayout) {
    const auto image = noise(31, 17);
    EXPECT_NE(image->drawnCopy()->uint8Data(), image->uint8Data());
    const auto argb = image->argbDrawnCopy();
    EXPECT_EQ(argb->bitmap().layout(), BitmapLayout::argb);
    EXPECT_EQ(argb->uint8Data()[0], image->uint8Data()[3]);
    EXPECT_TRUE(haveSamePixels(*argb->rgbaDrawnCopy(), *image));
    EXPECT_TRUE(
        haveSamePixels(*argb->oriented(std::int64_t{7}), *image->oriented(std::int64_t{7})));
    EXPECT_TRUE(
        haveSamePixels(*argb->cropping({.dx = 2, .dy = 3}), *image->cropping({.dx = 2, .dy = 3})));
    EXPECT_TRUE(haveSamePixels(*argb->resizing({40, 50}), *image->resizing({40, 50})));
    EXPECT_EQ(CGImage::argbDraw(3, 2, [](CGContext&) {})->bitmap().layout(), BitmapLayout::argb);
}

TEST(CGImage, SizesThatNoBitmapHasPrintTheMessageAndGiveNothing) {
    const auto image = noise(40, 30);
    const auto never = [](CGContext&) { FAIL(); };
    testing::internal::CaptureStdout();
    std::size_t refusals = 0;
    const auto refused = [&](const CGImage::Pointer& result) { refusals += result == nullptr; };
    for (double bad : {nan, infinity, -infinity, -5.0, 0.0, 0.4, -0.4, 1e19, -1e19, 1e300, 1e9}) {
        refused(image->resizing({bad, 10}));
        refused(image->fitting({bad, bad}));
    }
    for (double bad : {nan, infinity, -infinity, 20.0, 1e300, -1e300, 1e9, -1e9}) {
        refused(image->cropping({.dx = bad, .dy = 0}));
        refused(image->cropping({.percent = bad}));
    }
    for (double bad : {nan, infinity, 0.0, 1e300, 1e9}) {
        refused(image->applying({bad, 0, 0, 1, 0, 0}));
        refused(image->applying({1, bad, -bad, 0, 0, 0}));
    }
    for (std::int64_t bad : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{1} << 40}) {
        refused(CGImage::empty(1 << 10, bad));
        refused(CGImage::argbDraw(bad, 5, never));
    }
    EXPECT_EQ(refusals, 22u + 16 + 10 + 6);
    std::string messages;
    for (std::size_t i = 0; i < refusals; ++i)
        messages += "CGContext.createRGBBitmapContex cannot create context\n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), messages);
}

TEST(CGImage, AnythingDrawnAnywhereIsSafe) {
    const auto image = noise(20, 10);
    const double values[] = {0, 1, -1, 0.3, -1e-12, 1e-300, 1e12, -1e18, 1e300, infinity, nan};
    for (double a : values)
        for (double b : values)
            for (double tx : values) {
                const auto result = CGImage::draw(16, 16, [&](CGContext& context) {
                    context.concatenate({a, b, -b, a, tx, -tx});
                    context.draw(*image, image->rect());
                    context.draw(*image, CGRect(tx, a, b, a));
                });
                ASSERT_NE(result, nullptr);
            }
}

TEST(CGImageDeathTest, WhatLeavesTheRangeOfByteCountsStops) {
    constexpr std::int64_t tooWide = (std::int64_t{1} << 61);
    const char* const message = "^The byte count of a bitmap row of -?[0-9]+ pixels is outside the "
                                "signed 64-bit range.\n$";
    EXPECT_DEATH((void)CGImage::empty(tooWide, 1), message);
    EXPECT_DEATH((void)CGContext::argb(-tooWide - 1, 1), message);
    EXPECT_DEATH((void)noise(2, 2)->resizing({5e18, 1}), message);
    EXPECT_DEATH((void)noise(2, 2)->cropping({.dx = -2.5e18, .dy = 0}), message);
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const auto image = noise(5, 2);
    EXPECT_EQ(image->offset(-1, 1), 16);
    EXPECT_DEATH((void)image->offset(0, most), "outside the signed 64-bit range");
    EXPECT_DEATH((void)image->offset(most, 0), "outside the signed 64-bit range");
    EXPECT_DEATH(
        (void)image->offset(most / 4, 1),
        "^The byte offset of pixel \\(2305843009213693951, 1\\) is outside the signed 64-bit "
        "range.\n$");
    EXPECT_DEATH((void)byteOffset(20, 32, 0, 0, 0), "without bits");
}

} // namespace
