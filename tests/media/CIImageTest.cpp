#include "TestImages.h"
#include <tests/Testing.h>

#include <zorvan/media/CIContext.h>
#include <zorvan/media/CIFilter.h>
#include <zorvan/media/CIImage.h>

namespace {

CGImage::Pointer drawn(const CIImage::Pointer& image) {
    return CIContext::create()->createCGImage(image);
}

TEST(CIImage, IsPlacedByArithmeticAlone) {
    const auto image = CIImage::create(plain(400, 300, 0xFF0000FF));
    const CGRect rect(10, 20, 200, 100);
    EXPECT_EQ(image->centered(rect)->extent(), CGRect(-90, -80, 400, 300));
    EXPECT_EQ(image->aspectFill(rect)->extent(), CGRect(0, 0, 200, 150));
    EXPECT_TRUE(image->aspectFit(rect)->extent().size.isSimilarTo(CGSize(400.0 / 3, 100), 9));
    const auto moved = image->transformed(CGAffineTransform({.translationX = 7, .y = -3}));
    EXPECT_EQ(moved->aspectFill(rect)->extent().origin, CGPoint(3.5, -1.5)); // about the origin
    EXPECT_EQ(moved->cropped(CGRect(0, 0, 10, 10))->extent(), CGRect(7, 0, 3, 10));
    EXPECT_TRUE(moved->cropped(CGRect(1000, 0, 10, 10))->extent().isNull());
}

TEST(CIImage, IsDrawnWholeAndUnchanged) {
    const auto picture = noise(301, 403); // several tiles
    const auto image = CIImage::create(picture);
    EXPECT_TRUE(haveSamePixels(*drawn(image), *picture));
    const auto moved = image->transformed(CGAffineTransform({.translationX = -1000, .y = 55}));
    EXPECT_TRUE(haveSamePixels(*drawn(moved), *picture));
    const auto turned = image->transformed(CGAffineTransform({.rotationAngle = std::acos(-1) / 2}));
    EXPECT_TRUE(haveSamePixels(*drawn(turned), *picture->oriented(8)));
    const auto around = CIContext::create()->createCGImage(image->cropped(CGRect(0, 0, 5, 5)),
                                                           CGRect(-1, -2, 10, 10));
    EXPECT_EQ(pixelAt(*around, 0, 0) | pixelAt(*around, 7, 7), 0u);
    EXPECT_EQ(pixelAt(*around, 1, 7), pixelAt(*picture, 0, 402));
}

TEST(CIImage, BlendsByTheFixedMatrices) {
    const auto image = CIImage::create(plain(3, 3, 0xFF4080C8));
    EXPECT_EQ(pixelAt(*drawn(image->withAlphaBlending(0)), 1, 1), 0x80204064);
    EXPECT_EQ(pixelAt(*drawn(image->withColorBlending(1)), 1, 1), 0xFF204064);
    // In a picture of more than the image, at its place.
    const auto more =
        CIContext::create()->createCGImage(image->withColorBlending(1), CGRect(-4, -2, 9, 6));
    expectPixels(
        *more, [](auto x, auto y) { return x >= 4 && x < 7 && y >= 1 && y < 4 ? 0xFF204064 : 0u; });
}

CIFilter::Pointer matrix(const CIVector& red, const CIVector& green, const CIVector& blue,
                         const CIVector& bias = {}) {
    const auto filter = CIFilter::create("CIColorMatrix");
    filter->setValue(red, "inputRVector");
    filter->setValue(green, "inputGVector");
    filter->setValue(blue, "inputBVector");
    filter->setValue(bias, "inputBiasVector");
    return filter;
}

TEST(CIImage, MixesChannelsByTheMatrixAndClamps) {
    const auto filter = matrix({0, 1, 0, 0}, {0, 0, 3, 0}, {}, {0, 0, -1, 0.25});
    // Half transparent, so that colours have to be read without their alpha.
    const auto image = CIImage::create(plain(2, 2, 0x80402010));
    const auto result = componentsAt(drawn(image->applying({filter}))->bitmap(), 0, 0);
    EXPECT_NEAR(result[3], 0.7520 * 255, 1);
    EXPECT_NEAR(result[0], 0.25 * 0.752 * 255, 1); // green was 0x20 of 0x80
    EXPECT_NEAR(result[1], 0.752 * 255, 1);        // thrice 0x40 of 0x80, clamped
    EXPECT_EQ(result[2], 0);
}

struct NoOutput final : CIFilter {
    NoOutput() : CIFilter("none") {}
    CIImage::Pointer outputImage() const override { return nullptr; }
};

TEST(CIImage, RunsFiltersInOrder) {
    const auto image = CIImage::create(plain(2, 2, 0xFFFFFFFF));
    const auto none = std::make_shared<NoOutput>();
    EXPECT_EQ(image->applying({none, nullptr}), image);
    const auto toRed = matrix({1, 0, 0, 0}, {}, {}), redToBlue = matrix({}, {}, {1, 0, 0, 0});
    EXPECT_EQ(pixelAt(*drawn(image->applying({toRed, none, redToBlue})), 0, 0), 0xFFFF0000);
    EXPECT_EQ(pixelAt(*drawn(image->applying({redToBlue, none, toRed})), 0, 0), 0xFF000000);
    EXPECT_EQ(CIFilter::create("CINothing"), nullptr);
    EXPECT_EQ(CIFilter::create("CIToneCurve")->outputImage(), nullptr);
}

TEST(CIImage, AToneCurveGoesThroughItsPointsAndNeverTurnsBack) {
    const auto curve = CIFilter::create("CIToneCurve");
    const CIVector points[] = {{0, 0}, {0.1, 0.4}, {0.2, 0.45}, {0.8, 0.5}, {1, 1}};
    for (int i = 0; i < 5; ++i)
        curve->setValue(points[i], "inputPoint" + std::to_string(i));
    Bitmap ramp = Bitmap::make(256, 1).value();
    for (int x = 0; x < 256; ++x)
        for (int c = 0; c < 4; ++c)
            ramp.data()[x * 4 + c] = c == 3 ? 255 : static_cast<std::uint8_t>(x);
    const auto result = drawn(CIImage::create(CGImage::create(std::move(ramp)))->applying({curve}));
    for (const CIVector& point : points)
        EXPECT_NEAR(componentsAt(result->bitmap(), std::lround(point.x * 255), 0)[0], point.y * 255,
                    2);
    for (int x = 1; x < 256; ++x)
        EXPECT_GE(componentsAt(result->bitmap(), x, 0)[0],
                  componentsAt(result->bitmap(), x - 1, 0)[0]);
}

/// A scene of greys, with a patch of skin and one of foliage, as light of that strength and colour
/// shows it.
CGImage::Pointer scene(double light, double redLight, double blueLight) {
    Bitmap bitmap = Bitmap::make(160, 120).value();
    for (std::int64_t y = 0; y < 120; ++y)
        for (std::int64_t x = 0; x < 160; ++x) {
            const double grey = 0.05 + 0.9 * static_cast<double>(x) / 159;
            const bool isSkin = x > 60 && x < 90 && y<40, isLeaf = x> 60 && x < 90 && y > 80;
            const double r = isSkin ? 0.85 : isLeaf ? 0.2 : grey;
            const double g = isSkin ? 0.62 : isLeaf ? 0.5 : grey;
            const double b = isSkin ? 0.5 : isLeaf ? 0.15 : grey;
            const double components[] = {r * light * redLight, g * light, b * light * blueLight, 1};
            for (int c = 0; c < 4; ++c)
                bitmap.row(y)[x * 4 + c] =
                    static_cast<std::uint8_t>(std::lround(std::min(components[c], 1.0) * 255));
        }
    return CGImage::create(std::move(bitmap));
}

TEST(CIImage, AutoAdjustmentBringsAnUnderExposedPictureBack) {
    const auto wanted = scene(1, 1, 1);
    for (const auto& [red, blue] : {std::pair(1.0, 1.0), std::pair(0.9, 1.15)}) {
        const auto dark = scene(0.22, red, blue);
        const auto adjusted = drawn(CIImage::create(dark)->autoAdjusted());
        EXPECT_LT(meanDifference(*adjusted, *wanted), meanDifference(*dark, *wanted) / 4);
        const auto grey = componentsAt(adjusted->bitmap(), 110, 60);
        EXPECT_NEAR(grey[0], grey[1], 8);
        EXPECT_NEAR(grey[2], grey[1], 8);
    }
    // A good picture stays much as it is, and its skin keeps its hue.
    const auto same = drawn(CIImage::create(wanted)->autoAdjusted());
    EXPECT_LT(meanDifference(*same, *wanted), 10);
    const auto skin = componentsAt(same->bitmap(), 75, 20);
    EXPECT_NEAR(static_cast<double>(skin[0]) / skin[2], 0.85 / 0.5, 0.25);
}

TEST(CIImage, AutoAdjustmentLeavesPicturesThatTellNothing) {
    for (const auto& picture :
         {plain(50, 50, 0xFF404040), plain(50, 50, 0), plain(50, 50, 0xFF8CB0E0) /* a face */}) {
        const auto image = CIImage::create(picture);
        EXPECT_EQ(image->autoAdjusted(), image);
    }
    const auto dark = CIImage::create(scene(0.2, 1, 1));
    for (const bool isAsked : {false, true})
        EXPECT_EQ(dark->autoAdjusted({{kCIImageAutoAdjustEnhance, isAsked}}) == dark, !isAsked);
}

TEST(CIImage, WhatHasNoPixelsGivesNoPicture) {
    const auto image = CIImage::create(plain(3, 3, 0xFFFFFFFF));
    EXPECT_EQ(CIImage::create(CGImage::Pointer()), nullptr);
    for (const auto& none :
         {CIImage::Pointer(), image->cropped(CGRect(10, 10, 1, 1)), image->aspectFit(CGRect()),
          image->transformed({NAN, 0, 0, 1, 0, 0}), image->transformed({1e300, 0, 0, 1, 0, 0}),
          image->transformed({1, 0, 0, 1, INFINITY, 0})})
        EXPECT_EQ(drawn(none), nullptr);
}

} // namespace
