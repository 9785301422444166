#include "Support.h"
#include <tests/Testing.h>

#include <zorvan/platform/imageio/internal/StoredProperties.h>

#include <png.h>

namespace zorvan::imageio {
namespace {

struct Kind {
    int colorType;
    int depth;
    bool interlaced;
    bool transparentColour;
};

/// The sample that a test picture has at a place, before it is scaled to 8 bits.
unsigned sampleAt(std::int64_t x, std::int64_t y, int channel, int depth) {
    const unsigned largest = (1U << depth) - 1;
    return static_cast<unsigned>(x * 3 + y * 5 + channel * 7) & largest;
}

int channelCount(int colorType) {
    const int colours =
        (colorType & PNG_COLOR_MASK_COLOR) && !(colorType & PNG_COLOR_MASK_PALETTE) ? 3 : 1;
    return colours + ((colorType & PNG_COLOR_MASK_ALPHA) ? 1 : 0);
}

std::vector<std::uint8_t> rowOf(const Kind& kind, std::int64_t width, std::int64_t y) {
    const int channels = channelCount(kind.colorType);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(width * channels * 2));
    std::size_t bit = 0;
    for (std::int64_t x = 0; x < width; ++x)
        for (int channel = 0; channel < channels; ++channel)
            for (int i = kind.depth - 1; i >= 0; --i, ++bit)
                if (sampleAt(x, y, channel, kind.depth) >> i & 1)
                    row[bit / 8] |= static_cast<std::uint8_t>(128 >> bit % 8);
    return row;
}

void append(png_structp png, png_bytep data, std::size_t size) {
    auto& out = *static_cast<Data*>(png_get_io_ptr(png));
    const auto* first = reinterpret_cast<const std::byte*>(data);
    out.insert(out.end(), first, first + size);
}

Data write(const Kind& kind, std::int64_t width, std::int64_t height, png_text* text = nullptr) {
    Data bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(png, &bytes, append, [](png_structp) {});
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height),
                 kind.depth, kind.colorType, kind.interlaced, 0, 0);
    std::array<png_color, 256> palette;
    std::array<png_byte, 256> alphas;
    for (std::size_t i = 0; i < 256; ++i) {
        palette[i] = {static_cast<png_byte>(255 - i), static_cast<png_byte>(i),
                      static_cast<png_byte>(i / 2)};
        alphas[i] = i == 1 ? 0 : 255;
    }
    png_color_16 clear = {0, 1, 1, 1, 1};
    const bool indexed = kind.colorType == PNG_COLOR_TYPE_PALETTE;
    if (indexed)
        png_set_PLTE(png, info, palette.data(), 1 << kind.depth);
    if (kind.transparentColour)
        png_set_tRNS(png, info, indexed ? alphas.data() : nullptr, indexed ? 2 : 0, &clear);
    if (text)
        png_set_text(png, info, text, 1);
    png_write_info(png, info);
    const int passes = png_set_interlace_handling(png);
    for (int pass = 0; pass < passes; ++pass)
        for (std::int64_t y = 0; y < height; ++y)
            png_write_row(png, rowOf(kind, width, y).data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return bytes;
}

Pixel expectedPixel(const Kind& kind, std::int64_t x, std::int64_t y) {
    const auto raw = [&](int channel) { return sampleAt(x, y, channel, kind.depth); };
    const auto scaled = [&](int channel) {
        const unsigned largest = (1U << kind.depth) - 1;
        return static_cast<int>((raw(channel) * 255 + largest / 2) / largest);
    };
    if (kind.colorType == PNG_COLOR_TYPE_PALETTE) {
        const int index = static_cast<int>(raw(0));
        if (kind.transparentColour && index == 1)
            return {0, 0, 0, 0};
        return {255 - index, index, index / 2, 255};
    }
    const bool colour = (kind.colorType & PNG_COLOR_MASK_COLOR) != 0;
    Pixel pixel = {scaled(0), scaled(colour ? 1 : 0), scaled(colour ? 2 : 0), 255};
    if (kind.colorType & PNG_COLOR_MASK_ALPHA)
        pixel[3] = scaled(colour ? 3 : 1);
    else if (kind.transparentColour && raw(0) == 1 && (!colour || (raw(1) == 1 && raw(2) == 1)))
        pixel[3] = 0;
    for (std::size_t c = 0; c < 3; ++c)
        pixel[c] = (pixel[c] * pixel[3] * 2 + 255) / 510;
    return pixel;
}

TEST(Png, EveryColourTypeAndDepthDecodes) {
    const std::map<int, std::vector<int>> depthsOfTypes = {{PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}},
                                                           {PNG_COLOR_TYPE_PALETTE, {1, 2, 4, 8}},
                                                           {PNG_COLOR_TYPE_RGB, {8, 16}},
                                                           {PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}},
                                                           {PNG_COLOR_TYPE_RGB_ALPHA, {8, 16}}};
    for (const auto& [colorType, depths] : depthsOfTypes)
        for (const int depth : depths)
            for (const bool interlaced : {false, true})
                for (const bool clear : {false, true}) {
                    const bool hasAlpha = (colorType & PNG_COLOR_MASK_ALPHA) != 0;
                    if (clear && hasAlpha)
                        continue;
                    SCOPED_TRACE(testing::Message()
                                 << colorType << ' ' << depth << ' ' << interlaced << ' ' << clear);
                    const Kind kind = {colorType, depth, interlaced, clear};
                    const Data bytes = write(kind, 19, 11);
                    const auto properties = propertiesOf(bytes);
                    EXPECT_EQ(number(properties, "Depth"), depth);
                    EXPECT_EQ(number(properties, "HasAlpha"), hasAlpha || clear ? 1 : 0);
                    const Bitmap picture = decoded(bytes);
                    ASSERT_EQ(picture.height(), 11);
                    expectPixels(picture, [&kind = kind](std::int64_t x, std::int64_t y) {
                        return expectedPixel(kind, x, y);
                    });
                }
}

/// A small picture with a text.
Data withText(int kind, std::string key, std::string value) {
    png_text text = {};
    text.compression = kind;
    text.key = key.data();
    text.text = value.data();
    text.text_length = value.size();
    return write({PNG_COLOR_TYPE_GRAY, 8, false, false}, 3, 1, &text);
}

TEST(Png, ExifAfterThePixelsIsFound) {
    Data bytes = encoded(FileFormat::png, pattern(8, 8), {{"Orientation", 6}});
    // Move the whole Exif chunk to just before the end chunk.
    const std::size_t start = positionOf(bytes, "eXIf") - 4;
    const std::size_t length = std::to_integer<std::size_t>(bytes[start + 3]) + 12;
    std::rotate(&bytes[start], &bytes[start + length], &bytes[positionOf(bytes, "IEND") - 4]);
    EXPECT_EQ(number(propertiesOf(bytes), "Orientation"), 6);
    EXPECT_EQ(decoded(bytes).width(), 8);
}

/// Exif as some programs keep it in a text.
std::string rawProfile(const Data& block) {
    std::string hex = "457869660000"; // "Exif\0\0"
    for (const std::byte byte : block) {
        std::array<char, 3> digits;
        std::snprintf(digits.data(), digits.size(), "%02X", std::to_integer<unsigned>(byte));
        hex += digits.data();
    }
    return "\nexif\n      " + std::to_string(hex.size() / 2) + "\n" + hex.substr(0, 72) + "\n" +
           hex.substr(72) + "\n";
}

TEST(Png, ExifKeptAsTextTurnsThePictureToo) {
    const std::string profile = rawProfile(exifBlock(storedProperties(
        {{"Orientation", 6}, {"{Exif}", PropertyList::Dictionary{{"LensModel", "a lens"}}}})));
    for (const int kind : {PNG_TEXT_COMPRESSION_NONE, PNG_TEXT_COMPRESSION_zTXt,
                           PNG_ITXT_COMPRESSION_NONE, PNG_ITXT_COMPRESSION_zTXt}) {
        const auto properties = propertiesOf(withText(kind, "Raw profile type exif", profile));
        EXPECT_EQ(number(properties, "Orientation"), 6) << kind;
        EXPECT_EQ(text(properties, "{Exif}", "LensModel"), "a lens") << kind;
        const Data other = withText(kind, "Raw profile type xmp", profile);
        EXPECT_EQ(number(propertiesOf(other), "Orientation"), -1);
        for (std::size_t length = 0; length < profile.size(); length += 3)
            propertiesOf(withText(kind, "Raw profile type APP1", profile.substr(0, length)));
    }
    const Data comment = withText(PNG_TEXT_COMPRESSION_zTXt, "Comment", "well");
    EXPECT_EQ(text(propertiesOf(comment), "{PNG}", "Comment"), "well");
    // What all of them come to is bounded.
    const Data filler = withText(PNG_TEXT_COMPRESSION_zTXt, "Filler", std::string(9 << 20, 'x'));
    const auto from = filler.begin() + static_cast<std::ptrdiff_t>(positionOf(filler, "zTXt") - 4);
    const auto to = filler.begin() + static_cast<std::ptrdiff_t>(positionOf(filler, "IDAT") - 4);
    Data many = comment;
    for (int i = 0; i < 2; ++i)
        many.insert(many.begin() + 33, from, to);
    EXPECT_EQ(text(propertiesOf(many), "{PNG}", "Comment"), "");
}

TEST(Png, AResolutionCutShortHasNoUnit) {
    using namespace std::string_view_literals;
    Data bytes = encoded(FileFormat::png, pattern(4, 4));
    const Data chunk = bytesOf("\0\0\0\x08pHYs\0\0\x10\0\0\0\x10\0\x01\x01\x01\x01"sv);
    bytes.insert(bytes.begin() + 33, chunk.begin(), chunk.end());
    EXPECT_EQ(number(propertiesOf(bytes), "{PNG}", "XPixelsPerMeter"), 4096);
    EXPECT_EQ(number(propertiesOf(bytes), "DPIWidth"), -1);
}

TEST(Png, AWrongCheckSumIsDamage) {
    Data bytes = encoded(FileFormat::png, pattern(40, 40));
    bytes[positionOf(bytes, "IDAT") + 20] ^= std::byte{0x55};
    EXPECT_EQ(errorOf(bytes), "the file is damaged");
}

} // namespace
} // namespace zorvan::imageio
