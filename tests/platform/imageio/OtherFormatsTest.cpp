#include "Support.h"
#include <tests/Testing.h>
#include <zorvan/platform/foundation/internal/base64.h>

#include <dlfcn.h>
#include <sys/resource.h>

#ifdef ZORVAN_WITH_HEIC
#include <libheif/heif.h>
#endif

namespace zorvan::imageio {
namespace {

constexpr std::int64_t width = 24, height = 16;

/// What the samples show, whole or on a larger canvas: four flat quarters, red growing from left to
/// right, green from top to bottom. With alpha, the right half is a fifth opaque.
Pixel quarterAt(std::int64_t x, std::int64_t y, bool hasAlpha = false) {
    const bool isRight = x >= width / 2, isLow = y >= height / 2;
    const int alpha = hasAlpha && isRight ? 51 : 255;
    return {isRight ? alpha : 0, isLow ? alpha : 0, alpha * 3 / 5, alpha};
}

Bitmap quarters(bool hasAlpha = false) {
    Bitmap bitmap = Bitmap::make(width, height).value();
    for (std::int64_t i = 0; i < bitmap.byteCount(); ++i)
        bitmap.data()[i] = static_cast<std::uint8_t>(
            quarterAt(i / 4 % width, i / 4 / width, hasAlpha)[static_cast<std::size_t>(i % 4)]);
    return bitmap;
}

struct Sample {
    FileFormat format;
    const char* name;
    bool isFaded = false;
    /// How far components may be off on average.
    double tolerance = 0;
};
const Sample samples[] = {{FileFormat::webp, "lossless.webp", true, 0.5},
                          {FileFormat::webp, "lossy.webp", false, 10},
                          {FileFormat::gif, "plain.gif"},
                          {FileFormat::bmp, "24.bmp"},
#ifdef ZORVAN_JPEG_XL
                          {FileFormat::jpegXL, "turned.jxl", true, 0.5},
#endif
                          {FileFormat::svg, "quarters.svg"}};

TEST(OtherFormats, AreKnownByTheirBytesReadInBothSizesAndErrorsWhenCut) {
    for (const auto& [format, name, isFaded, tolerance] : samples) {
        SCOPED_TRACE(name);
        const Data bytes = sample(name);
        const auto reader = ImageReader::open(bytes);
        EXPECT_EQ(reader->format(), format);
        EXPECT_EQ(reader->count(), 1);
        const auto properties = propertiesOf(bytes);
        EXPECT_EQ(number(properties, "PixelWidth"), width);
        EXPECT_EQ(number(properties, "PixelHeight"), height);
        EXPECT_EQ(number(properties, "HasAlpha"), isFaded || format == FileFormat::svg ? 1 : 0);
        const Bitmap original = quarters(isFaded);
        EXPECT_LE(difference(decoded(bytes), original).mean, tolerance);
        for (const std::int64_t limit : {12, 6}) {
            const Bitmap small = decoded(bytes, {.maximumPixelSize = limit});
            const Bitmap average = referenceDownscale(original, limit, limit * 2 / 3);
            EXPECT_LE(difference(small, average).mean, tolerance + 1) << limit;
        }
        EXPECT_EQ(decoded(bytes, {.maximumPixelSize = 1}).height(), 1);
        EXPECT_FALSE(reader->embeddedThumbnail(0));
        EXPECT_EQ(reader->error(), "the file holds no thumbnail");
        EXPECT_FALSE(reader->decode(1, {}));
        EXPECT_EQ(reader->error(), "the file holds no such picture");
        EXPECT_FALSE(encode(format, std::array<Frame, 1>{Frame{.bitmap = &original}}));
        for (Data cut(bytes.begin(), bytes.end() - 2); !cut.empty(); cut.pop_back()) {
            ImageReader::open(cut)->properties(0);
            EXPECT_NE(errorOf(cut), "") << cut.size();
        }
        readDamaged(bytes, 300);
    }
}

TEST(OtherFormats, SizesBeyondTheBoundAreRefusedBeforeAllocation) {
    Data gif = sample("plain.gif"), bmp = sample("24.bmp");
    for (std::size_t i = 0; i < 4; ++i)
        gif[6 + i] = std::byte{0xFF};
    for (const std::size_t at : {18u, 22u})
        bmp[at + 3] = std::byte{0x7F};
    const Data svg = bytesOf("<svg xmlns='http://www.w3.org/2000/svg' width='9e9' height='9e9'/>");
    for (const Data& bytes : {gif, bmp, svg})
        EXPECT_EQ(errorOf(bytes), "the picture is too large") << bytes.size();
    EXPECT_EQ(decoded(svg, {.maximumPixelSize = 10}).width(), 10); // drawn, not shrunk
    // A chain of references, longer than a stack is deep.
    std::string chain = "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><defs>";
    for (int i = 1; i < 5000; ++i)
        chain +=
            "<g id='a" + std::to_string(i) + "'><use href='#a" + std::to_string(i - 1) + "'/></g>";
    errorOf(bytesOf(chain + "</defs><use href='#a4999'/></svg>")); // later versions refuse it
    // Sizes within the bound that the file has not the bytes for.
    gif = sample("plain.gif");
    const std::size_t description = positionOf(gif, std::string_view(",\0\0\0\0\x18\0", 7));
    for (const std::size_t at : {std::size_t{7}, std::size_t{9}, description + 6, description + 8})
        gif[at] = std::byte{0x50};
    bmp = sample("24.bmp");
    Data runs = sample("8-rle.bmp");
    for (Data* bytes : {&bmp, &runs})
        (*bytes)[19] = (*bytes)[23] = std::byte{0x50};
    for (const Data& bytes : {gif, bmp, runs}) {
        EXPECT_EQ(number(propertiesOf(bytes), "PixelWidth"), 0x5018);
        EXPECT_EQ(errorWithin(std::uint64_t{256} << 20, bytes), "the file is cut short");
    }
    // A canvas on which the file has next to nothing to show.
    gif = sample("plain.gif");
    Data webp = sample("animated.webp"), jpeg = sample("ycc.jpg");
    const std::size_t frame = positionOf(jpeg, std::string_view("\xFF\xC0\0\x11\x08", 5)) + 5;
    for (std::byte* side : {&gif[7], &gif[9], &webp[25], &webp[28], &jpeg[frame], &jpeg[frame + 2]})
        *side = std::byte{0x50};
    Data progressive = sample("ycc-progressive.jpg"); // whole in memory, however small it is to be
    const std::size_t sides = positionOf(progressive, "\xFF\xC2") + 5;
    progressive[sides] = progressive[sides + 2] = std::byte{0x50};
    EXPECT_EQ(errorOf(progressive, {.maximumPixelSize = 9}), "the picture is too large");
    for (const Data& bytes : {gif, webp, jpeg})
        EXPECT_EQ(errorWithin(std::uint64_t{256} << 20, bytes), "the picture is too large");
}

TEST(OtherFormats, ExifTurnsAWebp) {
    // The second has "Exif" before the block, as other containers want it.
    for (const auto& [name, tolerance] : {std::pair("exif.webp", 0), {"exif-lossy.webp", 10}}) {
        const Data bytes = sample(name);
        EXPECT_EQ(number(propertiesOf(bytes), "Orientation"), 6);
        EXPECT_EQ(ImageReader::open(bytes)->orientation(0), 6);
        EXPECT_EQ(number(propertiesOf(bytes), "{GPS}", "Latitude"), 33.5);
        EXPECT_LE(difference(decoded(bytes), quarters()).mean, tolerance);
    }
}

TEST(OtherFormats, TheFirstPictureOfAnAnimationStandsOnItsCanvas) {
    const auto onCanvas = [](std::int64_t x, std::int64_t y) {
        const bool isInside = x >= 2 && x < 2 + width && y >= 4 && y < 4 + height;
        return isInside ? quarterAt(x - 2, y - 4) : Pixel{};
    };
    for (const char* name : {"animated.webp", "animated.gif", "animated-interlaced.gif"}) {
        const Data bytes = sample(name);
        EXPECT_EQ(number(propertiesOf(bytes), "PixelWidth"), 40);
        EXPECT_EQ(number(propertiesOf(bytes), "HasAlpha"), 1);
        const Bitmap shown = decoded(bytes);
        ASSERT_EQ(shown.height(), 30);
        expectPixels(shown, onCanvas);
    }
    // What stands beyond the canvas is not shown.
    const Bitmap part = decoded(sample("beyond-canvas.gif"));
    ASSERT_EQ(part.width(), 10);
    expectPixels(part, onCanvas);
}

TEST(OtherFormats, AColourOfAGifIsTransparent) {
    const Data bytes = sample("transparent.gif");
    EXPECT_EQ(number(propertiesOf(bytes), "HasAlpha"), 1);
    expectPixels(decoded(bytes), [](std::int64_t x, std::int64_t y) {
        return x < width / 2 && y < height / 2 ? Pixel{} : quarterAt(x, y);
    });
}

TEST(OtherFormats, EveryFormOfABmpDecodes) {
    // Bits of a pixel, then how it is stored; "core" is the oldest kind of head, the numbers behind
    // "v" stand for later ones.
    for (const std::string name :
         {"4", "8", "16", "24", "32", "8-rle", "4-rle", "4-core", "8-core", "24-core", "8-v5",
          "24-top-first", "16-565", "32-deep-top-first", "32-v3-alpha", "32-v5-alpha"}) {
        SCOPED_TRACE(name);
        const Data bytes = sample(name + ".bmp");
        EXPECT_LE(difference(decoded(bytes), quarters()).largest, name.starts_with("16") ? 8 : 1);
        const auto properties = propertiesOf(bytes);
        EXPECT_EQ(number(properties, "HasAlpha"), name.ends_with("alpha") ? 1 : 0);
        EXPECT_NEAR(number(properties, "DPIHeight"), name.ends_with("core") ? -1 : 200, 0.01);
    }
    expectPixels(decoded(sample("1.bmp")), [](auto x, auto) { return quarterAt(x, 0); });
    // Its colours are not multiplied by the alpha.
    EXPECT_LE(difference(decoded(sample("32-v4-faded.bmp")), quarters(true)).largest, 1);
    constexpr std::size_t bits = 28, compression = 30;
    for (const auto& [name, at, value] : {std::tuple("24.bmp", bits, 7),
                                          {"24.bmp", compression, 4},
                                          {"24.bmp", compression, 1},
                                          {"8.bmp", compression, 3}}) {
        Data unknown = sample(name);
        unknown[at] = static_cast<std::byte>(value);
        EXPECT_EQ(errorOf(unknown), "this variety of the format is not supported");
    }
}

std::string svg(const std::string& body) {
    return "<svg xmlns='http://www.w3.org/2000/svg' xmlns:x='http://www.w3.org/1999/xlink' "
           "width='8' height='8'>" +
           body + "</svg>";
}

std::string repeated(int count, const std::function<std::string(const std::string&)>& part) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += part(std::to_string(i));
    return text;
}

TEST(OtherFormats, AnSvgIsDrawnNoDeeperThanThereIsStackAndHidesNothing) {
    const std::string square = "<rect id='r' width='8' height='8' fill='#F00'/>";
    const std::string pattern = "<pattern id='p' width='8' height='8' "
                                "patternUnits='userSpaceOnUse'>" +
                                square + "</pattern>";
    const auto address = [](const std::string& content, const char* kind = "image/svg+xml") {
        return "data:" + std::string(kind) + ";base64," + internal::encodeBase64(bytesOf(content));
    };
    const std::string held = address(svg(pattern)),
                      heldStyle = address("rect{fill:url(" + held + "#p)}", "text/css");
    const auto declared = [&](const std::string& declarations) {
        return "<!DOCTYPE svg [" + declarations + "]>" + svg(square + "<desc>&e;</desc>");
    };
    // Patterns through which one deep group is drawn again and again: a product of two numbers.
    const auto chained = [](int patterns) {
        return svg(repeated(patterns,
                            [](const std::string& i) {
                                return "<pattern id='p" + i +
                                       "' width='8' height='8' patternUnits='userSpaceOnUse'>"
                                       "<use href='#deep' fill='url(#p" +
                                       std::to_string(std::stoi(i) + 1) + ")'/></pattern>";
                            }) +
                   "<defs><g id='deep'>" + repeated(240, [](auto) { return "<g>"; }) +
                   "<rect width='8' height='8'/>" + repeated(240, [](auto) { return "</g>"; }) +
                   "</g></defs><rect width='8' height='8' fill='url(#p0)'/>");
    };
    const std::string manyUses =
        "<defs>" + square + "</defs>" + repeated(70'000, [](auto) { return "<use href='#r'/>"; });
    const std::string manyClips = repeated(20'000, [](const std::string& i) {
        return "<clipPath id='c" + i + "'><path d='M0 0H8V8H0'/></clipPath>";
    });
    const std::string shown[] = {
        svg(square),
        svg(manyUses),
        svg(manyClips + square),
        svg("<image width='8' height='8' href='" + address(svg(square)) + "'/>"),
        svg("<image width='8' height='8' x:href=' DATA:image/svg+xml;BASE64," +
            address(svg(square)).substr(26) + "'/>"),
        svg(square + "<image href='data:image/png;base64,'/><image href='data:,GIF8'/>"),
        svg("<style>@font-face{src:url(\"" + address("font", "font/woff2") +
            "\")} .a{fill:url(#p)}</style>" + pattern + "<path class='a' d='M0 0H8V8H0'/>"),
        svg("<a href='" + held + "'>" + square + "</a>"),
        declared("<!ENTITY e 'plain'><!ATTLIST g fill CDATA 'red'>"),
        "<?xml version='1.0' encoding='windows-1252'?>" + svg(square + "<desc>\xE4</desc>"),
    };
    for (const std::string& text : shown) {
        SCOPED_TRACE(text.substr(0, 200));
        EXPECT_EQ(componentsAt(decoded(bytesOf(text)), 4, 4), (Pixel{255, 0, 0, 255}));
    }
    const std::string refused[] = {
        chained(300),
        svg("<use href='" + held + "#r'/>"),
        svg("<rect width='8' height='8' fill='url(" + held + "#p)'/>"),
        svg("<rect width='8' height='8' style='fill:\\75rl( \" d\\61 ta:" + held.substr(5) +
            "#p\")'/>"),
        svg("<style>rect{fill:url('" + held + "#p')}</style>" + square),
        svg("<style>@import '" + heldStyle + "';</style>" + square),
        "<?xml-stylesheet type='text/css' href='" + heldStyle + "'?>" + svg(square),
        svg("<i:include xmlns:i='http://www.w3.org/2001/XInclude' href='" + held + "'/>"),
        svg("<image href='" + address(chained(300)) + "'/>"),
        svg("<image href='" + address("\x1F\x8B compressed") + "'/>"),
        svg("<image href='" + address(svg("<use href='" + held + "#r'/>")) + "'/>"),
        declared("<!ENTITY e '<g/>'>"),
        declared("<!ENTITY e '&#60;g/>'>"),
        declared("<!ENTITY % e 'g'>"),
        declared(
            repeated(17, [](const std::string& i) { return "<!ATTLIST g a" + i + " CDATA 'b'>"; }) +
            "<!ENTITY e ''>"),
        "<?xml version='1.0' encoding='UTF-7'?>" + svg(square),
    };
    for (const std::string& text : refused)
        EXPECT_EQ(errorOf(bytesOf(text)), "the file is damaged") << text.substr(0, 200);
}

TEST(OtherFormats, AnSvgThatUsesItselfWithoutEndIsRefusedInBoundedTime) {
    void* const library = ::dlopen("librsvg-2.so.2", RTLD_NOW);
    if (!library || !::dlsym(library, "rsvg_handle_set_cancellable_for_rendering"))
        GTEST_SKIP() << "librsvg before 2.60 ends no drawing";
    std::string nested =
        "<svg xmlns='http://www.w3.org/2000/svg' width='64' height='64'><defs><filter id='f'>"
        "<feTurbulence baseFrequency='.9' numOctaves='10'/></filter>"
        "<rect id='a0' width='64' height='64' filter='url(#f)'/>";
    for (int i = 1; i < 6; ++i) {
        nested += "<g id='a" + std::to_string(i) + "'>";
        for (int use = 0; use < 12; ++use)
            nested += "<use href='#a" + std::to_string(i - 1) + "'/>";
        nested += "</g>";
    }
    EXPECT_EQ(errorOf(bytesOf(nested + "</defs><use href='#a5'/></svg>")),
              "the picture is too large");
}

#ifdef ZORVAN_JPEG_XL
TEST(OtherFormats, AJpegXLIsTurnedByItsOwnWord) {
    // Lossless and to be turned by 6, while its Exif box says 3.
    const auto properties = propertiesOf(sample("turned.jxl"));
    EXPECT_EQ(number(properties, "Orientation"), 6);
    EXPECT_EQ(number(properties, "{TIFF}", "Orientation"), 6);
    EXPECT_EQ(number(properties, "{GPS}", "Latitude"), 33.5);
    Data far = sample("turned.jxl"); // whose block stands behind as many bytes
    const std::size_t box = positionOf(far, "Exif") - 4;
    far.insert(far.begin() + static_cast<std::ptrdiff_t>(box) + 12, 200'000, {});
    for (const std::size_t i : {1u, 2u, 3u}) {
        far[box + i] = static_cast<std::byte>((200'000 + 0x68) >> (24 - 8 * i));
        far[box + 8 + i] = static_cast<std::byte>(200'000 >> (24 - 8 * i));
    }
    EXPECT_EQ(number(propertiesOf(far), "{GPS}", "Latitude"), 33.5);
    const Data bare = sample("quarters.jxl"); // without boxes
    EXPECT_EQ(ImageReader::open(bare)->format(), FileFormat::jpegXL);
    EXPECT_EQ(decoded(bare).width(), width);
}

TEST(OtherFormats, AJpegXLOfLayersWithoutNumberIsRefusedInBoundedTime) {
    Data file = sample("layered.jxl"); // 512 by 512, black, twice
    EXPECT_EQ(componentsAt(decoded(file), 511, 511), (Pixel{0, 0, 0, 255}));
    constexpr std::ptrdiff_t begin = 10, end = 38, count = 100'000;
    const Data layer(file.begin() + begin, file.begin() + end);
    Data layers;
    for (std::ptrdiff_t i = 0; i < count; ++i)
        layers.insert(layers.end(), layer.begin(), layer.end());
    file.insert(file.begin() + end, layers.begin(), layers.end());
    EXPECT_EQ(errorOf(file), "the picture is too large");
}
#endif

#ifdef ZORVAN_WITH_HEIC
TEST(OtherFormats, AnAvifIsReadWhereThereIsADecoder) {
    const Data bytes = sample("quarters.avif");
    EXPECT_EQ(ImageReader::open(bytes)->format(), FileFormat::avif);
    const auto properties = propertiesOf(bytes);
    EXPECT_EQ(number(properties, "PixelWidth"), width);
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
            EXPECT_NEAR(componentsAt(picture, x, y)[c], wanted[c], 8) << x << ',' << y << ' ' << c;
    }
    EXPECT_EQ(decoded(bytes, {.maximumPixelSize = 6}).height(), 4);
    // The same numbers by another matrix, which the codec's library may take into account already.
    Data other = bytes;
    other[positionOf(other, "nclx") + 9] = std::byte{1};
    EXPECT_NEAR(componentsAt(decoded(other), 4, 12)[1], 32, 8);
    // Primaries that there are not: the matrix holds all the same, and nothing leaks.
    other[positionOf(other, "nclx") + 4] = std::byte{0xC3};
    EXPECT_NEAR(componentsAt(decoded(other), 4, 12)[1], 32, 8);
}
#endif

} // namespace
} // namespace zorvan::imageio
