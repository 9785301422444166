#include "Support.h"
#include <tests/Testing.h>

#include <jpeglib.h>

namespace zorvan::imageio {
namespace {

struct Kind {
    J_COLOR_SPACE input;
    J_COLOR_SPACE stored;
    bool progressive = false;
    bool adobe = true;
};

/// A flat picture of one colour, given by its components.
Data write(const Kind& kind, const std::vector<JSAMPLE>& colour) {
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = 24;
    info.image_height = 16;
    info.input_components = static_cast<int>(colour.size());
    info.in_color_space = kind.input;
    jpeg_set_defaults(&info);
    jpeg_set_colorspace(&info, kind.stored);
    jpeg_set_quality(&info, 100, TRUE);
    if (kind.progressive)
        jpeg_simple_progression(&info);
    info.write_Adobe_marker = kind.adobe;
    jpeg_start_compress(&info, TRUE);
    std::vector<JSAMPLE> row;
    for (int x = 0; x < 24; ++x)
        row.insert(row.end(), colour.begin(), colour.end());
    JSAMPROW rows = row.data();
    while (info.next_scanline < info.image_height)
        jpeg_write_scanlines(&info, &rows, 1);
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    const auto* first = reinterpret_cast<const std::byte*>(bytes);
    Data result(first, first + size);
    std::free(bytes);
    return result;
}

TEST(Jpeg, EveryColourSpaceDecodes) {
    struct Row {
        Kind kind;
        std::vector<JSAMPLE> colour;
        Pixel expected;
        const char* model;
    };
    // Inks of a file with the Adobe marker are stored inverted: 255 means none.
    const std::vector<Row> table = {
        {{JCS_GRAYSCALE, JCS_GRAYSCALE}, {77}, {77, 77, 77, 255}, "Gray"},
        {{JCS_RGB, JCS_YCbCr}, {200, 100, 50}, {200, 100, 50, 255}, "RGB"},
        {{JCS_RGB, JCS_YCbCr, true}, {200, 100, 50}, {200, 100, 50, 255}, "RGB"},
        {{JCS_RGB, JCS_RGB}, {200, 100, 50}, {200, 100, 50, 255}, "RGB"},
        {{JCS_CMYK, JCS_CMYK}, {255, 128, 0, 255}, {255, 128, 0, 255}, "CMYK"},
        {{JCS_CMYK, JCS_YCCK}, {255, 128, 0, 255}, {255, 128, 0, 255}, "CMYK"},
        {{JCS_CMYK, JCS_YCCK}, {255, 255, 255, 51}, {51, 51, 51, 255}, "CMYK"},
        {{JCS_CMYK, JCS_CMYK, false, false}, {0, 127, 255, 0}, {255, 128, 0, 255}, "CMYK"},
    };
    for (const Row& row : table) {
        const Data bytes = write(row.kind, row.colour);
        const auto properties = propertiesOf(bytes);
        SCOPED_TRACE(testing::Message() << row.model << int(row.colour[0]) << row.kind.stored);
        EXPECT_EQ(*properties.find("ColorModel")->second.as<std::string>(), row.model);
        const Pixel got = pixelAt(decoded(bytes), 10, 8);
        for (std::size_t c = 0; c < 4; ++c)
            EXPECT_NEAR(got[c], row.expected[c], 3) << c;
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
    Data bytes = write({JCS_RGB, JCS_YCbCr}, {200, 100, 50});
    bytes.resize(bytes.size() - 2);
    EXPECT_EQ(decoded(bytes).width(), 24);
    Data progressive = write({JCS_RGB, JCS_YCbCr, true}, {200, 100, 50});
    progressive.resize(progressive.size() - 2);
    EXPECT_EQ(errorOf(progressive), "the file is cut short");
}

TEST(Jpeg, TheSizeIsFoundBehindLongSegments) {
    Data bytes = write({JCS_RGB, JCS_YCbCr}, {1, 2, 3});
    Data segment = bytesOf("\xFF\xE5\xFF\xFF");
    segment.resize(2 + 0xFFFF, std::byte{0xAB});
    for (int i = 0; i < 3; ++i)
        bytes.insert(bytes.begin() + 2, segment.begin(), segment.end());
    EXPECT_EQ(number(propertiesOf(bytes), "PixelWidth"), 24);
    EXPECT_EQ(decoded(bytes).width(), 24);
}

} // namespace
} // namespace zorvan::imageio
