#include "Support.h"
#include <tests/Testing.h>

namespace zorvan::imageio {
namespace {

TEST(Jpeg, EveryColourSpaceDecodes) {
    struct {
        const char* name; // of a flat picture
        Pixel expected;
        const char* model;
    } const table[] = {
        {"grey", {77, 77, 77, 255}, "Gray"},
        {"ycc", {200, 100, 50, 255}, "RGB"},
        {"ycc-progressive", {200, 100, 50, 255}, "RGB"},
        {"rgb", {200, 100, 50, 255}, "RGB"},
        // Inks of a file with the Adobe marker are stored inverted: 255 means none.
        {"cmyk", {255, 128, 0, 255}, "CMYK"},
        {"ycck", {255, 128, 0, 255}, "CMYK"},
        {"ycck-black", {51, 51, 51, 255}, "CMYK"},
        {"cmyk-unmarked", {255, 128, 0, 255}, "CMYK"},
    };
    for (const auto& [name, expected, model] : table) {
        SCOPED_TRACE(name);
        const Data bytes = sample(name + std::string(".jpg"));
        const auto properties = propertiesOf(bytes);
        EXPECT_EQ(*properties.find("ColorModel")->second.as<std::string>(), model);
        const Pixel got = componentsAt(decoded(bytes), 10, 8);
        for (std::size_t c = 0; c < 4; ++c)
            EXPECT_NEAR(got[c], expected[c], 3) << c;
        EXPECT_EQ(decoded(bytes, {.maximumPixelSize = 3}).height(), 2);
    }
}

TEST(Jpeg, ASmallPictureIsNeverDecodedAtALesserScale) {
    for (std::int64_t width = 1; width <= 9; ++width)
        for (std::int64_t height = 1; height <= 9; ++height) {
            const Bitmap original = pattern(width, height);
            const Frame frame = {.bitmap = &original, .quality = 1};
            const Data bytes = encode(FileFormat::jpeg, {&frame, 1}).value();
            SCOPED_TRACE(testing::Message() << width << " x " << height);
            EXPECT_LE(difference(decoded(bytes), original).largest, 6);
            const Bitmap less = decoded(bytes, {.maximumPixelSize = std::max(width, height) - 1});
            const Bitmap average = referenceDownscale(original, less.width(), less.height());
            EXPECT_LE(difference(less, average).largest, 6);
        }
}

TEST(Jpeg, AMissingEndMarkerIsForgivenWhenEveryPixelIsThere) {
    Data bytes = sample("ycc.jpg");
    bytes.resize(bytes.size() - 2);
    EXPECT_EQ(decoded(bytes).width(), 24);
    Data progressive = sample("ycc-progressive.jpg");
    progressive.resize(progressive.size() - 2);
    EXPECT_EQ(errorOf(progressive), "the file is cut short");
}

} // namespace
} // namespace zorvan::imageio
