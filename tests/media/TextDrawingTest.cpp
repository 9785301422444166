#include "TestImages.h"
#include <tests/Testing.h>

#include <zorvan/media/NSAttributedString.h>

namespace {

const std::string words =
    "several words that are broken into lines between one another and go on and on";

AttributeDictionary attributes(double size = 12, TextAlignment alignment = TextAlignment::left) {
    return {{AttributeName::font, TextFont{"DejaVu Sans", size}},
            {AttributeName::alignment, alignment}};
}

/// The pixels that are drawn on, counted from the bottom left.
struct Ink {
    std::int64_t left = 1 << 20, right = -1, bottom = 1 << 20, top = -1, count = 0;
};

Ink inkOf(const CGImage& image) {
    Ink ink;
    for (std::int64_t y = 0; y < image.height(); ++y)
        for (std::int64_t x = 0; x < image.width(); ++x)
            if (pixelAt(image, x, y) >> 24 > 40) {
                ink.left = std::min(ink.left, x);
                ink.right = std::max(ink.right, x);
                ink.bottom = std::min(ink.bottom, image.height() - 1 - y);
                ink.top = std::max(ink.top, image.height() - 1 - y);
                ++ink.count;
            }
    return ink;
}

Ink inkOf(const std::function<void(CGContext&)>& draw) {
    return inkOf(*CGImage::draw(200, 100, draw));
}

TEST(TextDrawing, FillsARectangleFromTheTopAndLeavesOutWhatDoesNotFit) {
    const auto inkIn = [](const CGRect& rect) {
        return inkOf([&](CGContext& c) { c.drawString(words, rect, attributes()); });
    };
    const CGRect rect(20, 10, 120, 60);
    const Ink ink = inkIn(rect);
    EXPECT_GE(ink.left, 20);
    EXPECT_LT(ink.right, 140);
    EXPECT_GT(ink.right, 110);
    EXPECT_NEAR(static_cast<double>(ink.top), 68, 3);
    EXPECT_GE(ink.bottom, 10);
    const Ink oneLine = inkIn(rect.with({.th = 20}));
    EXPECT_LT(oneLine.top - oneLine.bottom, 14);
    EXPECT_EQ(inkIn(rect.with({.th = 8})).count, 0);
}

TEST(TextDrawing, AlignsEachParagraphOnItsOwn) {
    const CGRect rect(0, 0, 200, 100);
    for (const auto& [alignment, left, right] :
         {std::tuple(TextAlignment::left, 0, 40), std::tuple(TextAlignment::right, 160, 199),
          std::tuple(TextAlignment::center, 80, 120)}) {
        const Ink ink = inkOf(
            [&, a = alignment](CGContext& c) { c.drawString("word", rect, attributes(12, a)); });
        EXPECT_GE(ink.left, left);
        EXPECT_LE(ink.right, right);
    }
    NSMutableAttributedString mixed(NSAttributedString("a\n", attributes(12, TextAlignment::left)));
    mixed.append(NSAttributedString("b", attributes(12, TextAlignment::right)));
    const Ink both = inkOf(*drawnIn(200, 100, false, [&] { drawTruncated(mixed, rect); }));
    EXPECT_LT(both.left, 10);
    EXPECT_GT(both.right, 190);
}

TEST(TextDrawing, StaysInsideAPath) {
    CGPath disc;
    disc.addEllipse(CGRect(10, 5, 90, 90));
    const auto beyond = [&](CGContext& c) {
        c.drawString(words, disc, attributes(8));
        c.setCompositingOperation(NSCompositingOperation::destinationOut);
        c.fillEllipse(CGRect(9, 4, 92, 92));
    };
    EXPECT_EQ(inkOf(beyond).count, 0);
    const Ink ink = inkOf([&](CGContext& c) { c.drawString(words, disc, attributes(8)); });
    EXPECT_GT(ink.right - ink.left, 60);
    // Its upper part takes letters of that size, but no line of them.
    CGPath parts;
    parts.addRect(CGRect(0, 80, 90, 12.3));
    parts.addRect(CGRect(0, 0, 90, 70));
    const Ink low = inkOf([&](CGContext& c) { c.drawString(words, parts, attributes(12)); });
    EXPECT_TRUE(low.count > 0 && low.top < 70);
    // A path that has no room for a line.
    CGPath sliver;
    sliver.addRect(CGRect(0, 0, 3, 90));
    EXPECT_EQ(inkOf([&](CGContext& c) { c.drawString(words, sliver, attributes()); }).count, 0);
}

TEST(TextDrawing, ShortensTheLastLineThatFits) {
    const auto drawn = [](const std::string& text, double height) {
        return inkOf(*drawnIn(200, 100, false, [&] {
            drawTruncated(NSAttributedString(text, attributes()), CGRect(0, 0, 100, height));
        }));
    };
    drawTruncated(NSAttributedString("x"), {0, 0, 9, 9}); // without a current context
    const Ink whole = drawn(words, 100), two = drawn(words, 32), first = drawn(words, 5);
    EXPECT_GT(whole.top - whole.bottom, 50);
    EXPECT_LT(two.top - two.bottom, 30);
    EXPECT_GT(two.top - two.bottom, 18);
    EXPECT_GT(first.count, 0); // in any case
    // A paragraph that ends where the room does says that there was another.
    EXPECT_GT(drawn("word\nnext", 16).right, drawn("word", 16).right + 5);
    EXPECT_EQ(drawn("word\nnext", 100).count, drawn("word\nnext", 33).count);
}

TEST(TextDrawing, IsUprightInEveryContext) {
    const NSAttributedString letter("L", attributes(40));
    const auto image =
        drawnIn(60, 60, false, [&] { drawTruncated(letter, CGRect(10, 5, 50, 55)); });
    EXPECT_TRUE(haveSamePixels(
        *image, *drawnIn(60, 60, true, [&] { drawTruncated(letter, CGRect(10, 0, 50, 55)); })));
    // Its ink is at the bottom.
    const Ink ink = inkOf(*image);
    std::int64_t low = 0, high = 0;
    for (std::int64_t x = ink.left; x <= ink.right; ++x) {
        low += pixelAt(*image, x, 59 - ink.bottom) >> 24 > 60;
        high += pixelAt(*image, x, 59 - ink.top) >> 24 > 60;
    }
    EXPECT_GT(low, high * 2);
}

TEST(TextDrawing, IsColouredInBothLayouts) {
    AttributeDictionary red = attributes(40);
    red.emplace(AttributeName::foregroundColor, TextColor(1, 0, 0));
    const auto draw = [&](CGContext& c) {
        c.setAlpha(0.5);
        c.drawString("\u2588", CGRect(0, 0, 50, 60), red); // a full block
    };
    EXPECT_EQ(pixelAt(*CGImage::draw(60, 60, draw), 10, 30), 0x80000080u);
    EXPECT_EQ(pixelAt(*CGImage::argbDraw(60, 60, draw), 10, 30), 0x00008080u);
}

TEST(TextDrawing, HasLinesUnderItAndThroughIt) {
    const auto inkWith = [](std::string_view name, const AttributeValue& value) {
        AttributeDictionary styled = attributes(40);
        styled.emplace(name, value);
        return inkOf([&](CGContext& c) { c.drawString("a b", {0, 0, 99, 60}, styled); }).count;
    };
    for (const auto name : {AttributeName::underlineStyle, AttributeName::strikethroughStyle}) {
        EXPECT_GT(inkWith(name, true), inkWith(name, false));
        EXPECT_GT(inkWith(name, std::int64_t{1}), inkWith(name, std::int64_t{0}));
        EXPECT_EQ(inkWith(name, false), inkWith("none", true));
    }
}

TEST(TextDrawing, IsMeasuredAsItIsDrawn) {
    const NSAttributedString text(words, attributes());
    const CGSize whole = size(text), broken = size(text, 100);
    EXPECT_GT(whole.width, 400);
    EXPECT_LE(broken.width, 100);
    EXPECT_NEAR(broken.height / whole.height, std::round(broken.height / whole.height), 0.01);
}

TEST(TextDrawing, TakesAnyText) {
    const std::string texts[] = {
        std::string("a\0b", 3),   "\xFF\xFE",      "\n\n\n",    "\r\n\u2029\r",
        std::string(100000, 'x'), "😀\u0301\u200D", "\u202Eשלום"};
    for (const std::string& text : texts)
        (void)inkOf([&](CGContext& c) {
            CGPath path;
            path.addEllipse(CGRect(0, 0, 200, 100));
            c.drawString(text, CGRect(0, 0, 200, 100), attributes());
            c.drawString(text, path, attributes());
            c.drawString(text, path, {{"NSFont", TextFont{"none such", -5}}});
            c.rotate(1e9);
            c.drawString(text, CGRect(0, 0, 1e12, 1e-9), attributes(1e9));
            c.scaleBy(0, 1);
            c.drawString(text, path, attributes());
        });
}

} // namespace
