#include <tests/Testing.h>

#include <zorvan/platform/graphics/TextDrawing.h>

namespace {

/// How many pixels of columns `left` to `right - 1` are painted.
std::int64_t painted(const Bitmap& bitmap, std::int64_t left = 0, std::int64_t right = 1 << 20) {
    std::int64_t count = 0;
    for (std::int64_t y = 0; y < bitmap.height(); ++y)
        for (std::int64_t x = left; x < std::min(right, bitmap.width()); ++x)
            count += bitmap.row(y)[x * 4] + bitmap.row(y)[x * 4 + 3] > 0;
    return count;
}

Bitmap blank(BitmapLayout layout = BitmapLayout::rgba) { return *Bitmap::make(200, 30, layout); }

} // namespace

TEST(TextDrawing, AlignsAndShortens) {
    Bitmap left = blank(), right = blank(), middle = blank(), end = blank();
    drawTextLine(left, "ab", {0, 0, 200, 20}, {.alignment = TextLineAlignment::left});
    drawTextLine(right, "ab", {0, 0, 200, 20}, {.alignment = TextLineAlignment::right});
    EXPECT_EQ(painted(left, 100), 0);
    EXPECT_EQ(painted(right, 0, 100), 0);
    EXPECT_EQ(painted(left), painted(right));

    // The tail of the name is what tells the two apart.
    const std::string name = "a very long name of a photo, number one of many.jpg";
    drawTextLine(middle, name, {0, 0, 100, 20}, {.ellipsis = TextEllipsis::middle});
    drawTextLine(end, name, {0, 0, 100, 20}, {.ellipsis = TextEllipsis::end});
    EXPECT_NE(std::memcmp(middle.data(), end.data(), 200 * 30 * 4), 0);
}

TEST(TextDrawing, PaintsPremultipliedColourInEitherLayout) {
    const TextLineStyle style{.size = 20,
                              .color = {.red = 200, .green = 100, .blue = 50, .alpha = 128}};
    Bitmap rgba = blank(), argb = blank(BitmapLayout::argb);
    drawTextLine(rgba, "Text", {0, 0, 200, 30}, style);
    drawTextLine(argb, "Text", {0, 0, 200, 30}, style);
    std::uint8_t strongest = 0;
    for (std::int64_t i = 0; i < rgba.byteCount(); i += 4) {
        const std::uint8_t* a = rgba.data() + i;
        const std::uint8_t* b = argb.data() + i;
        ASSERT_TRUE(a[0] == b[1] && a[1] == b[2] && a[2] == b[3] && a[3] == b[0]);
        ASSERT_TRUE(a[0] <= a[3] && a[1] <= a[3] && a[2] <= a[3]);
        strongest = std::max(strongest, a[3]);
    }
    EXPECT_EQ(strongest, 128);
}

TEST(TextDrawing, TakesAnyTextBoxAndSize) {
    for (const TextBox box : {TextBox{-50, -8, 100, 18},
                              {180, 20, 100, 18},
                              {0, -500, 50, 18},
                              {0, 0, -5, 18},
                              {0, 0, std::int64_t{1} << 40, 18},
                              {INT64_MIN, INT64_MIN, 50, 18},
                              {INT64_MAX, 0, 50, 18}}) {
        Bitmap bitmap = blank();
        drawTextLine(bitmap, "clipped text", box, {});
        EXPECT_EQ(painted(bitmap) > 0, box.x == -50 || box.x == 180);
    }
    for (const std::string& text :
         {std::string("\xFF\xC3 broken"), std::string("two\nlines"), std::string("nul\0!", 5),
          std::string("\u202E مرحبا 日本 \U0001F600"), std::string(1 << 20, 'x')}) {
        Bitmap bitmap = blank();
        drawTextLine(bitmap, text, {0, 0, 200, 20}, {});
        EXPECT_GT(painted(bitmap), 0);
    }
    for (const double size : {0.0, 1e300, std::nan("")}) {
        Bitmap bitmap = blank();
        drawTextLine(bitmap, "text", {0, 0, 200, 20}, {.size = size});
        EXPECT_EQ(painted(bitmap), 0);
    }
}

TEST(TextDrawing, SeveralThreadsShareABitmap) {
    Bitmap bitmap = blank();
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&bitmap, i] {
                for (int n = 0; n < 20; ++n)
                    drawTextLine(bitmap, "thread", {i * 50, 0, 50, 30}, {});
            });
    }
    EXPECT_EQ(painted(bitmap, 0, 50), painted(bitmap, 150, 200));
}
