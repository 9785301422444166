#include "TestImages.h"
#include <tests/Testing.h>

#include <zorvan/media/CGContext.h>

namespace {

void strokeLine(CGContext& context, CGPoint from, CGPoint to) {
    context.moveTo(from.x, from.y);
    context.addLineTo(to.x, to.y);
    context.strokePath();
}

void addTriangle(CGContext& context, double side) {
    context.moveTo(10, 5);
    context.addLineTo(10 + side, 5);
    context.addLineTo(10 + side, 5 + side / 2);
    context.closePath();
}

TEST(CGContext, IsLaidOutAsItsKindSays) {
    EXPECT_EQ(CGContext::rgba(5, 3)->offset(2, 1), 28);
    EXPECT_EQ(CGContext::argb(5, 3)->layout(), BitmapLayout::argb);
    testing::internal::CaptureStdout();
    EXPECT_EQ(CGContext::rgba(0, 3), nullptr);
    EXPECT_EQ(CGContext::argb(1 << 20, 1 << 20), nullptr);
    EXPECT_EQ(CGContext::rgba(-1, 3, [](CGContext&, std::uint8_t*, std::int64_t, std::int64_t) {}),
              nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(CGContext, AParallelFillVisitsEachPixelOnce) {
    for (const auto& [width, height] : {std::pair(1, 5000), {5000, 1}, {127, 129}}) {
        std::vector<std::atomic<int>> visits(static_cast<std::size_t>(width * height));
        std::atomic<int> elsewhere = 0;
        CGContext::rgba(width, height,
                        [&](CGContext& c, std::uint8_t* data, std::int64_t x, std::int64_t y) {
                            elsewhere += x < 0 || x >= c.width() || y < 0 || y >= c.height() ||
                                         data != c.uint8Data();
                            ++visits[static_cast<std::size_t>(y * c.width() + x)];
                            data[c.offset(x, y)] = 0;
                        });
        EXPECT_EQ(elsewhere, 0);
        for (const auto& visit : visits)
            ASSERT_EQ(visit, 1) << width << " x " << height;
    }
}

TEST(CGContext, TransformsHappenBeforeWhatWasThere) {
    const auto context = CGContext::rgba(10, 10);
    const auto placed = [&] { return CGPoint(1, 1).applying(context->ctm()); };
    context->translateBy(10, 20);
    context->scaleBy(2, 3);
    EXPECT_EQ(placed(), CGPoint(12, 23));
    const auto stop = [&] {
        context->concatenate({1, 0, 0, 1, 5, 5});
        EXPECT_EQ(placed(), CGPoint(22, 38));
        throw std::runtime_error("stop");
    };
    EXPECT_THROW(context->useTemporaryGState(stop), std::runtime_error);
    context->restoreGState(); // there is nothing to restore
    EXPECT_EQ(placed(), CGPoint(12, 23));
}

TEST(CGContext, PathsThatLeadFarAwayAreDrawnAsIfTheyEndedOutside) {
    struct {
        const char* what;
        void (*draw)(CGContext&, double far);
    } const table[] = {
        {"line",
         [](CGContext& c, double far) {
             strokeLine(c, {-far, -far / 10}, {far, far / 10});
         }},
        {"steep line",
         [](CGContext& c, double far) {
             strokeLine(c, {50, 50}, {50 + far / 9, 50 + far});
         }},
        {"corner",
         [](CGContext& c, double far) {
             c.setLineWidth(20);
             c.stroke(CGRect(30, 30, far, far));
         }},
        {"dashes",
         [](CGContext& c, double far) {
             c.setLineDash(3, {7, 5, 2});
             strokeLine(c, {100, 80}, {28 * far, 80});
             strokeLine(c, {100 - 28 * far, 20}, {28 * far, 20});
         }},
        {"triangle", [](CGContext& c, double far) { addTriangle(c, far), c.fillPath(); }},
        {"odd triangles",
         [](CGContext& c, double far) {
             addTriangle(c, far), addTriangle(c, far / 2), c.addRect(CGRect(0, 0, 60, 60));
             c.fillPath(CGPathFillRule::evenOdd);
         }},
        {"clip",
         [](CGContext& c, double far) {
             addTriangle(c, far), c.clip();
             c.fill(CGRect(0, 0, 200, 200));
         }},
    };
    for (const auto& [what, draw] : table)
        for (const double far : {3e5, 2e7, 1e9}) {
            const auto drawn = [&, d = draw](double end) {
                return CGImage::draw(200, 200, [&](CGContext& c) { d(c, end); });
            };
            const auto expected = drawn(1000), found = drawn(far);
            EXPECT_GT(meanDifference(*expected, *plain(200, 200, 0)), 0.2) << what;
            EXPECT_LT(meanDifference(*expected, *found), 0.02) << what << far;
        }
    // A circle so large that it is straight.
    const auto half = CGImage::draw(200, 200, [](CGContext& c) {
        c.fillEllipse(CGRect({.center = {100, 100 - 1e9}, .square = 2e9}));
    });
    expectPixels(*half, [](auto, auto y) { return y < 100 ? 0 : 0xFF000000u; });
}

TEST(CGContext, APatternFadesAsAWhole) {
    const auto drawn = CGImage::draw(8, 8, [](CGContext& context) {
        const CGRect all(0, 0, 8, 8);
        const auto draw = [&](CGContext& cell) {
            cell.setFillColor(*CGColor::create({.hexString = "#000000"}));
            cell.fill(all);
            cell.setAlpha(1);
            cell.setFillColor(*CGColor::create({.hexString = "#FFFFFF"}));
            cell.fill(all);
        };
        context.setFillColoredPattern({.bounds = all, .draw = draw}, 0.5);
        context.fill(all);
    });
    EXPECT_EQ(pixelAt(*drawn, 4, 4), 0x80808080u);
}

TEST(CGContext, AnImageStaysAsItWas) {
    const auto context = CGContext::rgba(8, 8);
    context->draw(*plain(8, 8, 0xFF0000FF), CGRect(0, 0, 8, 8));
    const auto red = context->makeImage();
    context->draw(*plain(8, 8, 0xFF00FF00), CGRect(0, 0, 8, 8));
    EXPECT_EQ(pixelAt(*red, 3, 3), 0xFF0000FF);

    // And when the pixels are written directly, before and after.
    std::uint8_t* const data = context->uint8Data();
    const auto green = context->makeImage();
    std::fill(data, data + 256, std::uint8_t{7});
    EXPECT_EQ(pixelAt(*green, 0, 0), 0xFF00FF00);
    EXPECT_EQ(pixelAt(*context->makeImage(), 0, 0), 0x07070707u);
    // A picture of the context drawn on itself.
    context->draw(*context->makeImage(), CGRect(0, 0, 4, 4));
    // It gives up its pixels without a copy, and draws no more.
    const auto last = std::move(*context).makeImage();
    EXPECT_EQ(last->uint8Data(), data);
    EXPECT_EQ(context->uint8Data(), nullptr);
    EXPECT_EQ(context->makeImage(), nullptr);
    context->draw(*last, CGRect(0, 0, 8, 8));
}

} // namespace
