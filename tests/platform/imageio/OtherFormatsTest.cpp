#include "OtherFormats.h"
#include <tests/Testing.h>

#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/StoredProperties.h>

#include <sys/resource.h>

#ifdef ZORVAN_WITH_HEIC
#include <libheif/heif.h>
#endif

namespace zorvan::imageio {
namespace {

Data cameraBlock(int orientation) {
    return exifBlock(storedProperties(
        {{"Orientation", orientation},
         {"{GPS}", PropertyList::Dictionary{{"LatitudeRef", "S"}, {"Latitude", 33.5}}}}));
}

TEST(OtherFormats, AreKnownByTheirBytesReadInBothSizesAndErrorsWhenCut) {
    for (const OtherFormat& file : otherFormats()) {
        SCOPED_TRACE(typeIdentifier(file.format));
        const auto reader = ImageReader::open(file.bytes);
        EXPECT_EQ(reader->format(), file.format);
        EXPECT_EQ(reader->count(), 1);
        const auto properties = propertiesOf(file.bytes);
        EXPECT_EQ(number(properties, "PixelWidth"), quartersWidth);
        EXPECT_EQ(number(properties, "PixelHeight"), quartersHeight);
        EXPECT_EQ(number(properties, "HasAlpha"), file.hasAlpha ? 1 : 0);
        const bool isFaded = file.hasAlpha && file.format != FileFormat::svg;
        const Bitmap original = quarters(isFaded);
        EXPECT_LE(difference(decoded(file.bytes), original).mean, file.tolerance);
        for (const std::int64_t limit : {12, 6}) {
            const Bitmap small = decoded(file.bytes, {.maximumPixelSize = limit});
            const Bitmap average = referenceDownscale(original, limit, limit * 2 / 3);
            EXPECT_LE(difference(small, average).mean, file.tolerance + 1) << limit;
        }
        EXPECT_EQ(decoded(file.bytes, {.maximumPixelSize = 1}).height(), 1);
        EXPECT_FALSE(reader->embeddedThumbnail(0));
        EXPECT_EQ(reader->error(), "the file holds no thumbnail");
        EXPECT_FALSE(reader->decode(1, {}));
        EXPECT_EQ(reader->error(), "the file holds no such picture");
        EXPECT_FALSE(encode(file.format, std::array<Frame, 1>{Frame{.bitmap = &original}}));
        Data cut = file.bytes;
        for (cut.resize(cut.size() - 2); !cut.empty(); cut.pop_back()) {
            ImageReader::open(cut)->properties(0);
            EXPECT_NE(errorOf(cut), "") << cut.size();
        }
        readDamaged(file.bytes, 300);
    }
}

/// So much more address space, and none beyond it, for this process.
class MemoryLimit {
public:
    explicit MemoryLimit(std::uint64_t more) {
        std::uint64_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        getrlimit(RLIMIT_AS, &before_);
        rlimit limit = before_;
        limit.rlim_cur = pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) + more;
        setrlimit(RLIMIT_AS, &limit);
    }
    ~MemoryLimit() { setrlimit(RLIMIT_AS, &before_); }
    MemoryLimit(const MemoryLimit&) = delete;

private:
    rlimit before_ = {};
};

TEST(OtherFormats, SizesBeyondTheBoundAreRefusedBeforeAllocation) {
    Data gif = gifOf(quarters());
    Data bmp = bmpOf(quarters());
    for (std::size_t i = 0; i < 4; ++i)
        gif[6 + i] = std::byte{0xFF};
    for (const std::size_t at : {18u, 22u})
        bmp[at + 3] = std::byte{0x7F};
    const Data svg = bytesOf("<svg xmlns='http://www.w3.org/2000/svg' width='9e9' height='9e9'/>");
    for (const Data& bytes : {gif, bmp, svg})
        EXPECT_EQ(errorOf(bytes), "the picture is too large") << bytes.size();
    EXPECT_EQ(decoded(svg, {.maximumPixelSize = 10}).width(),
              10); // drawn, not shrunk
    // Sizes within the bound that the file has not the bytes for.
    gif = gifOf(quarters());
    const std::size_t description = positionOf(gif, std::string_view(",\0\0\0\0\x18\0", 7));
    for (const std::size_t at : {std::size_t{7}, std::size_t{9}, description + 6, description + 8})
        gif[at] = std::byte{0x50};
    bmp = bmpOf(quarters());
    Data runs = bmpOf(quarters(), {8, 1});
    for (Data* bytes : {&bmp, &runs})
        (*bytes)[19] = (*bytes)[23] = std::byte{0x50};
    for (const Data& bytes : {gif, bmp, runs}) {
        EXPECT_EQ(number(propertiesOf(bytes), "PixelWidth"), 0x5018);
        const MemoryLimit limit(std::uint64_t{256} << 20);
        EXPECT_EQ(errorOf(bytes), "the file is cut short");
    }
}

TEST(OtherFormats, ExifTurnsAWebp) {
    for (const bool isLossless : {false, true})
        for (const Data& exif : {cameraBlock(6), withExifSignature(cameraBlock(6))}) {
            const Data bytes =
                withWebpExif(webpOf(quarters(), isLossless), {quartersWidth, quartersHeight}, exif);
            const auto properties = propertiesOf(bytes);
            EXPECT_EQ(number(properties, "Orientation"), 6);
            EXPECT_EQ(ImageReader::open(bytes)->orientation(0), 6);
            EXPECT_EQ(number(properties, "{GPS}", "Latitude"), 33.5);
            EXPECT_LE(difference(decoded(bytes), quarters()).mean, isLossless ? 0 : 10);
        }
}

TEST(OtherFormats, TheFirstPictureOfAnAnimationStandsOnItsCanvas) {
    const Bitmap picture = quarters();
    const auto onCanvas = [&](std::int64_t x, std::int64_t y) {
        x -= 2;
        y -= 4;
        const bool isInside = x >= 0 && x < quartersWidth && y >= 0 && y < quartersHeight;
        return isInside ? pixelAt(picture, x, y) : Pixel{};
    };
    GifForm form = {.left = 2, .top = 4, .canvas = {40, 30}, .isAnimated = true};
    const Data plain = gifOf(picture, form);
    form.isInterlaced = true;
    for (const Data& bytes : {animatedWebp(picture), plain, gifOf(picture, form)}) {
        const auto properties = propertiesOf(bytes);
        EXPECT_EQ(number(properties, "PixelWidth"), 40);
        EXPECT_EQ(number(properties, "HasAlpha"), 1);
        const Bitmap shown = decoded(bytes);
        ASSERT_EQ(shown.height(), 30);
        expectPixels(shown, onCanvas);
    }
    // What stands beyond the canvas is not shown.
    form.canvas = {10, 12};
    const Bitmap part = decoded(gifOf(picture, form));
    ASSERT_EQ(part.width(), 10);
    expectPixels(part, onCanvas);
}

TEST(OtherFormats, AColourOfAGifIsTransparent) {
    Bitmap picture = quarters();
    for (std::int64_t y = 0; y < 8; ++y)
        std::fill_n(picture.row(y), 12 * 4, std::uint8_t{0});
    const Data bytes = gifOf(picture);
    EXPECT_EQ(number(propertiesOf(bytes), "HasAlpha"), 1);
    EXPECT_EQ(difference(decoded(bytes), picture).largest, 0);
}

TEST(OtherFormats, EveryFormOfABmpDecodes) {
    constexpr std::array<std::uint32_t, 4> of565 = {0xF800, 0x07E0, 0x001F, 0};
    constexpr std::array<std::uint32_t, 4> reversed = {0xFF, 0xFF00, 0xFF0000, 0xFF000000};
    constexpr std::array<std::uint32_t, 4> deep = {0x3FF00000, 0xFFC00, 0x3FF, 0};
    const BmpForm forms[] = {{4},
                             {8},
                             {16},
                             {24},
                             {32},
                             {8, 1},
                             {4, 2},
                             {4, 0, 12},
                             {8, 0, 12},
                             {24, 0, 12},
                             {8, 0, 124},
                             {24, 0, 40, true},
                             {16, 3, 40, false, of565},
                             {32, 3, 40, true, deep},
                             {32, 3, 56, false, reversed},
                             {32, 3, 124, false, reversed}};
    for (const BmpForm& form : forms) {
        SCOPED_TRACE(testing::Message() << form.bits << ' ' << form.compression << ' '
                                        << form.headSize << ' ' << form.isTopFirst);
        const Data bytes = bmpOf(quarters(), form);
        EXPECT_LE(difference(decoded(bytes), quarters()).largest, form.bits == 16 ? 8 : 1);
        const auto properties = propertiesOf(bytes);
        EXPECT_EQ(number(properties, "HasAlpha"), form.masks[3] != 0 ? 1 : 0);
        EXPECT_NEAR(number(properties, "DPIHeight"), form.headSize == 12 ? -1 : 200, 0.01);
    }
    Bitmap twoColours = quarters();
    for (std::int64_t y = 0; y < quartersHeight; ++y)
        std::copy_n(twoColours.row(0), twoColours.bytesPerRow(), twoColours.row(y));
    EXPECT_EQ(difference(decoded(bmpOf(twoColours, {1})), twoColours).largest, 0);
    Bitmap faded = quarters(true);
    const BmpForm withAlpha = {32, 3, 108, false, reversed};
    Bitmap stored = quarters();
    for (std::int64_t i = 0; i < stored.byteCount(); i += 4)
        stored.data()[i + 3] = faded.data()[i + 3];
    EXPECT_LE(difference(decoded(bmpOf(stored, withAlpha)), faded).largest, 1);
    for (const BmpForm& unknown : {BmpForm{7}, {24, 4}, {24, 1}, {8, 3}})
        EXPECT_EQ(errorOf(bmpOf(quarters(), unknown)),
                  "this variety of the format is not supported");
}

#ifdef ZORVAN_JPEG_XL
TEST(OtherFormats, AJpegXLIsTurnedByItsOwnWord) {
    const auto properties = propertiesOf(sample("turned.jxl"));
    EXPECT_EQ(number(properties, "Orientation"), 6);
    EXPECT_EQ(number(properties, "{TIFF}", "Orientation"), 6);
    EXPECT_EQ(number(properties, "{GPS}", "Latitude"), 33.5);
    const Data bare = sample("quarters.jxl"); // without boxes
    EXPECT_EQ(ImageReader::open(bare)->format(), FileFormat::jpegXL);
    EXPECT_EQ(decoded(bare).width(), quartersWidth);
}
#endif

#ifdef ZORVAN_WITH_HEIC
TEST(OtherFormats, AnAvifIsReadWhereThereIsADecoder) {
    const Data bytes = sample("quarters.avif");
    EXPECT_EQ(ImageReader::open(bytes)->format(), FileFormat::avif);
    const auto properties = propertiesOf(bytes);
    EXPECT_EQ(number(properties, "PixelWidth"), quartersWidth);
    EXPECT_EQ(number(properties, "HasAlpha"), 1);
    EXPECT_EQ(number(properties, "Depth"), 8);
    if (!heif_have_decoder_for_format(heif_compression_AV1)) {
        EXPECT_EQ(errorOf(bytes), "the decoder for this format is not installed");
        return;
    }
    const Bitmap picture = decoded(bytes);
    for (const auto& [x, y] : {std::pair(4, 4), {20, 4}, {4, 12}, {20, 12}}) {
        const int alpha = x < 12 ? 255 : 64;
        const Pixel wanted = {x < 12 ? 255 : 0, y < 8 ? alpha : 0, alpha / 2, alpha};
        for (std::size_t c = 0; c < 4; ++c)
            EXPECT_NEAR(pixelAt(picture, x, y)[c], wanted[c], 8) << x << ',' << y << ' ' << c;
    }
    EXPECT_EQ(decoded(bytes, {.maximumPixelSize = 6}).height(), 4);
}
#endif

} // namespace
} // namespace zorvan::imageio
