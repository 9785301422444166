#include "TestImages.h"
#include <tests/Testing.h>

#include <zorvan/colour/NSColor.h>
#include <zorvan/media/CGContext.h>

#include <mutex>

namespace {

TEST(CGContext, IsLaidOutAsItsKindSays) {
    const auto context = CGContext::rgba(5, 3);
    EXPECT_EQ(context->bytesPerRow(), 20);
    EXPECT_EQ(context->bitsPerPixel(), 32);
    EXPECT_EQ(context->bitsPerComponent(), 8);
    EXPECT_EQ(context->offset(2, 1), 28);
    EXPECT_EQ(context->layout(), BitmapLayout::rgba);
    EXPECT_EQ(CGContext::argb(5, 3)->layout(), BitmapLayout::argb);
    testing::internal::CaptureStdout();
    EXPECT_EQ(CGContext::rgba(0, 3), nullptr);
    EXPECT_EQ(CGContext::argb(1 << 20, 1 << 20), nullptr);
    EXPECT_EQ(CGContext::rgba(-1, 3, [](CGContext&, std::uint8_t*, std::int64_t, std::int64_t) {}),
              nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(CGContext, AParallelFillVisitsEachPixelOnce) {
    const std::pair<std::int64_t, std::int64_t> sizes[] = {{1, 1},     {1, 5000}, {5000, 1},
                                                           {127, 129}, {8, 8},    {700, 300}};
    for (const auto& [width, height] : sizes) {
        std::vector<std::atomic<int>> visits(static_cast<std::size_t>(width * height));
        std::atomic<int> elsewhere = 0;
        const auto context = CGContext::rgba(
            width, height, [&](CGContext& c, std::uint8_t* data, std::int64_t x, std::int64_t y) {
                elsewhere +=
                    x < 0 || x >= c.width() || y < 0 || y >= c.height() || data != c.uint8Data();
                ++visits[static_cast<std::size_t>(y * c.width() + x)];
                std::uint8_t* const pixel = data + c.offset(x, y);
                pixel[0] = static_cast<std::uint8_t>(x);
                pixel[1] = static_cast<std::uint8_t>(y);
                pixel[3] = 255;
            });
        EXPECT_EQ(elsewhere, 0);
        for (const auto& visit : visits)
            ASSERT_EQ(visit, 1) << width << " x " << height;
        expectPixels(*context->makeImage(), [](auto x, auto y) {
            return 0xFF000000u | static_cast<unsigned>((y & 255) << 8 | (x & 255));
        });
    }
}

TEST(CGContext, TransformsHappenBeforeWhatWasThere) {
    const auto context = CGContext::rgba(10, 10);
    const auto placed = [&] { return CGPoint(1, 1).applying(context->ctm()); };
    context->translateBy(10, 20);
    context->scaleBy(2, 3);
    EXPECT_EQ(placed(), CGPoint(12, 23));
    context->saveGState();
    context->concatenate({1, 0, 0, 1, 5, 5});
    EXPECT_EQ(placed(), CGPoint(22, 38));
    for (int i = 0; i < 2; ++i) { // the second has nothing to restore
        context->restoreGState();
        EXPECT_EQ(placed(), CGPoint(12, 23));
    }
    const auto stop = [&] {
        context->rotate(1);
        throw std::runtime_error("stop");
    };
    EXPECT_THROW(context->useTemporaryGState(stop), std::runtime_error);
    EXPECT_EQ(placed(), CGPoint(12, 23));
}

TEST(CGContext, DrawsFromTheBottomUp) {
    const auto context = CGContext::rgba(6, 5);
    context->draw(*plain(1, 1, 0xFF0000FF), CGRect(1, 0, 2, 1));
    context->draw(*plain(1, 1, 0xFF00FF00), CGRect(6, 5, -1, -1)); // standardised: the top right
    expectPixels(*context->makeImage(), [](auto x, auto y) {
        const bool isRed = y == 4 && (x == 1 || x == 2), isGreen = y == 0 && x == 5;
        return isRed ? 0xFF0000FF : isGreen ? 0xFF00FF00 : 0;
    });
}

using Components = std::array<double, 4>;

/// What a filled square leaves of another, each component premultiplied.
Components composited(NSCompositingOperation operation, const Components& below,
                      const Components& above) {
    const auto image = CGImage::draw(1, 1, [&](CGContext& c) {
        for (const auto& [red, green, blue, alpha] : {below, above}) {
            c.setFillColor(
                NSColor({.red = red, .green = green, .blue = blue, .alpha = alpha}).cgColor());
            c.fill(CGRect(0, 0, 1, 1));
            c.setCompositingOperation(operation);
        }
    });
    Components result;
    for (std::size_t i = 0; i < 4; ++i)
        result[i] = (pixelAt(*image, 0, 0) >> 8 * i & 255) / 255.0;
    return result;
}

TEST(CGContext, BlendsByTheFormulaOfEachMode) {
    using Operation = NSCompositingOperation;
    using Blend = double (*)(double below, double above);
    const std::pair<Operation, Blend> table[] = {
        {Operation::multiply, [](double b, double s) { return b * s; }},
        {Operation::screen, [](double b, double s) { return b + s - b * s; }},
        {Operation::overlay,
         [](double b, double s) { return b <= 0.5 ? 2 * b * s : 1 - 2 * (1 - b) * (1 - s); }},
        {Operation::hardLight,
         [](double b, double s) { return s <= 0.5 ? 2 * b * s : 1 - 2 * (1 - b) * (1 - s); }},
        {Operation::darken, [](double b, double s) { return std::min(b, s); }},
        {Operation::lighten, [](double b, double s) { return std::max(b, s); }},
        {Operation::colorDodge, [](double b, double s) { return std::min(1.0, b / (1 - s)); }},
        {Operation::colorBurn, [](double b, double s) { return 1 - std::min(1.0, (1 - b) / s); }},
        {Operation::softLight,
         [](double b, double s) {
             const double lit = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
             return s <= 0.5 ? b - (1 - 2 * s) * b * (1 - b) : b + (2 * s - 1) * (lit - b);
         }},
        {Operation::difference, [](double b, double s) { return std::abs(b - s); }},
        {Operation::exclusion, [](double b, double s) { return b + s - 2 * b * s; }},
    };
    const Components below{0.8, 0.2, 0.4, 1}, above{0.4, 0.6, 0.2, 1};
    for (const auto& [operation, blend] : table) {
        const Components mixed = composited(operation, below, above);
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(mixed[i], i == 3 ? 1 : blend(below[i], above[i]), 0.01)
                << static_cast<int>(operation) << ", " << i;
    }
    const Components most{0, 0, 0, 0.8}, some{0, 0, 0, 0.6};
    EXPECT_NEAR(composited(Operation::XOR, most, some)[3], 0.8 * 0.4 + 0.6 * 0.2, 0.01);
    EXPECT_NEAR(composited(Operation::destinationOut, most, some)[3], 0.8 * 0.4, 0.01);
}

TEST(CGContext, LaysAPictureOverWhatIsThere) {
    for (const bool isARGB : {false, true}) {
        const auto context = isARGB ? CGContext::argb(4, 4) : CGContext::rgba(4, 4);
        context->draw(*plain(4, 4, 0xFF0000C8), CGRect(0, 0, 4, 4));
        context->draw(*plain(2, 4, 0x80004000), CGRect(0, 0, 2, 4)); // half covered
        context->draw(*plain(1, 4, 0), CGRect(3, 0, 1, 4));
        const auto image = context->makeImage()->rgbaDrawnCopy();
        EXPECT_EQ(pixelAt(*image, 3, 2), 0xFF0000C8);
        const std::uint32_t mixed = pixelAt(*image, 1, 1);
        EXPECT_EQ(mixed >> 24, 0xFFu);
        EXPECT_NEAR(mixed & 0xFF, 200 * 127 / 255.0, 1);
        EXPECT_EQ(mixed >> 8 & 0xFF, 0x40u);
    }
}

TEST(CGContext, AnImageStaysAsItWas) {
    const auto context = CGContext::rgba(8, 8);
    context->draw(*plain(8, 8, 0xFF0000FF), CGRect(0, 0, 8, 8));
    const auto red = context->makeImage();
    const std::uint8_t* const pixels = red->uint8Data();
    context->draw(*plain(8, 8, 0xFF00FF00), CGRect(0, 0, 8, 8));
    EXPECT_EQ(pixelAt(*red, 3, 3), 0xFF0000FF);
    EXPECT_EQ(red->uint8Data(), pixels);

    // And when the pixels are written directly, before and after.
    std::uint8_t* const data = context->uint8Data();
    const auto green = context->makeImage();
    std::fill(data, data + 256, std::uint8_t{7});
    EXPECT_EQ(pixelAt(*green, 0, 0), 0xFF00FF00);
    EXPECT_EQ(pixelAt(*context->makeImage(), 0, 0), 0x07070707u);
    // A picture of the context drawn on itself.
    context->draw(*context->makeImage(), CGRect(0, 0, 4, 4));
    EXPECT_EQ(context->width(), 8);
}

TEST(CGContext, GivesUpItsPixelsWithoutACopy) {
    const auto context = CGContext::rgba(8, 8);
    context->draw(*plain(8, 8, 0xFF0000FF), CGRect(0, 0, 8, 8));
    std::uint8_t* const data = context->uint8Data();
    const auto image = std::move(*context).makeImage();
    EXPECT_EQ(image->uint8Data(), data);
    EXPECT_EQ(context->uint8Data(), nullptr);
    EXPECT_EQ(context->makeImage(), nullptr);
    context->draw(*image, CGRect(0, 0, 8, 8));
    EXPECT_EQ(context->width(), 8);
}

} // namespace
