#include "OtherFormats.h"
#include <tests/Testing.h>

#include <bit>

#include <gif_lib.h>
#include <webp/encode.h>

#ifdef ZORVAN_JPEG_XL
#include <jxl/encode.h>
#endif

namespace zorvan::imageio {
namespace {

void append(Data& out, std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i)
        out.push_back(static_cast<std::byte>(value >> 8 * i & 255));
}

void append(Data& out, const Data& more) { out.insert(out.end(), more.begin(), more.end()); }

void setLittle(Data& out, std::size_t at, std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i)
        out[at + static_cast<std::size_t>(i)] = static_cast<std::byte>(value >> 8 * i & 255);
}

/// A chunk with its name and length, filled up to an even length.
Data chunk(std::string_view name, const Data& content) {
    Data result = bytesOf(name);
    append(result, content.size(), 4);
    append(result, content);
    result.resize(result.size() + (content.size() & 1));
    return result;
}

Data riff(const Data& chunks) {
    Data content = bytesOf("WEBP");
    append(content, chunks);
    return chunk("RIFF", content);
}

/// What says that more than a picture follows: which chunks, and the canvas.
Data extendedHead(std::uint32_t flags, PixelSize canvas) {
    Data content;
    append(content, flags, 4);
    append(content, static_cast<std::uint64_t>(canvas.width - 1), 3);
    append(content, static_cast<std::uint64_t>(canvas.height - 1), 3);
    return chunk("VP8X", content);
}

/// The chunks of a file that has no extended head.
Data chunksOf(const Data& webp) { return Data(webp.begin() + 12, webp.end()); }

Data plainPixels(const Bitmap& bitmap) {
    Data result;
    for (std::int64_t i = 0; i < bitmap.byteCount(); i += 4) {
        const int alpha = bitmap.data()[i + 3];
        for (int c = 0; c < 3; ++c)
            result.push_back(static_cast<std::byte>(
                alpha == 0 ? 0 : (bitmap.data()[i + c] * 255 + alpha / 2) / alpha));
        result.push_back(static_cast<std::byte>(alpha));
    }
    return result;
}

/// Writes each colour of a picture as its number.
class Numbered {
public:
    explicit Numbered(const Bitmap& bitmap) {
        for (std::int64_t y = 0; y < bitmap.height(); ++y)
            for (std::int64_t x = 0; x < bitmap.width(); ++x)
                numbers.push_back(numberOf(pixelAt(bitmap, x, y)));
    }

    std::vector<Pixel> colours = {};
    std::vector<std::uint8_t> numbers = {};

private:
    std::uint8_t numberOf(const Pixel& pixel) {
        const auto found = std::find(colours.begin(), colours.end(), pixel);
        const auto number = static_cast<std::uint8_t>(found - colours.begin());
        if (found == colours.end())
            colours.push_back(pixel);
        return number;
    }
};

void putGifPicture(GifFileType* gif, const GifForm& form, PixelSize size,
                   std::vector<std::uint8_t> numbers) {
    const int width = static_cast<int>(size.width), height = static_cast<int>(size.height);
    EGifPutImageDesc(gif, form.left, form.top, width, height, form.isInterlaced, nullptr);
    const auto put = [&](std::int64_t y) {
        EGifPutLine(gif, numbers.data() + y * size.width, width);
    };
    if (!form.isInterlaced) {
        for (std::int64_t y = 0; y < height; ++y)
            put(y);
        return;
    }
    for (const auto& [start, step] : {std::pair(0, 8), {4, 8}, {2, 4}, {1, 2}})
        for (std::int64_t y = start; y < height; y += step)
            put(y);
}

void putPixel(std::vector<std::uint8_t>& row, std::size_t x, std::uint32_t value, int bits) {
    if (8 % bits != 0 && bits < 8)
        return; // of a form that there is not
    if (bits < 8)
        row[x * static_cast<std::size_t>(bits) / 8] |=
            static_cast<std::uint8_t>(value << (8 - bits - static_cast<int>(x) * bits % 8));
    else
        for (int i = 0; i < bits / 8; ++i)
            row[x * static_cast<std::size_t>(bits / 8) + static_cast<std::size_t>(i)] =
                static_cast<std::uint8_t>(value >> 8 * i);
}

std::uint32_t masked(const Pixel& pixel, const std::array<std::uint32_t, 4>& masks) {
    std::uint32_t value = 0;
    for (std::size_t c = 0; c < 4; ++c) {
        if (masks[c] == 0)
            continue;
        const auto largest = masks[c] >> std::countr_zero(masks[c]);
        const auto part = static_cast<std::uint64_t>(pixel[c]) * largest / 255;
        value |= static_cast<std::uint32_t>(part) << std::countr_zero(masks[c]);
    }
    return value;
}

/// Rows of colour numbers, the bottom one first, in runs, in jumps and in the open.
Data runLengths(const Numbered& picture, bool isWide) {
    Data result;
    const auto width = static_cast<std::size_t>(quartersWidth);
    for (std::size_t y = quartersHeight; y-- > 0;) {
        const std::uint8_t* const row = picture.numbers.data() + y * width;
        const auto repeat = [&](std::size_t x, std::uint64_t count) {
            append(result, count, 1);
            append(result, isWide ? row[x] : row[x] * 0x11u, 1);
        };
        if (y % 3 == 0) {
            repeat(0, width / 2);
            repeat(width / 2, width / 2);
        } else if (y % 3 == 1) {
            append(result, 0x0500, 2); // five in the open
            for (std::size_t x = 0; x < 5; x += isWide ? 1 : 2)
                append(result, isWide ? row[x] : row[x] * 0x10u + row[x + 1], 1);
            append(result, 0, 1); // filled up to an even length
            repeat(5, width / 2 - 5);
            repeat(width / 2, width / 2 + 3); // beyond the edge
        } else {
            repeat(0, width / 2);
            append(result, 0x00000200, 4); // to where it is
            repeat(width / 2, width / 2);
        }
        append(result, 0, 2);
    }
    append(result, 0x0100, 2);
    return result;
}

} // namespace

Bitmap quarters(bool hasAlpha) {
    std::optional<Bitmap> bitmap = Bitmap::make(quartersWidth, quartersHeight);
    for (std::int64_t y = 0; y < quartersHeight; ++y)
        for (std::int64_t x = 0; x < quartersWidth; ++x) {
            const bool isRight = x >= quartersWidth / 2, isLow = y >= quartersHeight / 2;
            const int alpha = hasAlpha && isRight ? 51 : 255;
            std::uint8_t* const pixel = bitmap->row(y) + x * 4;
            pixel[0] = static_cast<std::uint8_t>(isRight ? alpha : 0);
            pixel[1] = static_cast<std::uint8_t>(isLow ? alpha : 0);
            pixel[2] = static_cast<std::uint8_t>(alpha * 3 / 5);
            pixel[3] = static_cast<std::uint8_t>(alpha);
        }
    return std::move(*bitmap);
}

Data webpOf(const Bitmap& bitmap, bool isLossless) {
    const Data pixels = plainPixels(bitmap);
    const auto* rgba = reinterpret_cast<const std::uint8_t*>(pixels.data());
    const int width = static_cast<int>(bitmap.width()), height = static_cast<int>(bitmap.height());
    std::uint8_t* bytes = nullptr;
    const std::size_t size = isLossless
                                 ? WebPEncodeLosslessRGBA(rgba, width, height, width * 4, &bytes)
                                 : WebPEncodeRGBA(rgba, width, height, width * 4, 95, &bytes);
    const auto* first = reinterpret_cast<const std::byte*>(bytes);
    Data result(first, first + size);
    WebPFree(bytes);
    return result;
}

Data animatedWebp(const Bitmap& bitmap) {
    constexpr std::uint32_t animated = 0x02, withAlpha = 0x10;
    Data frame;
    append(frame, 1, 3); // half of the place
    append(frame, 2, 3);
    append(frame, static_cast<std::uint64_t>(bitmap.width() - 1), 3);
    append(frame, static_cast<std::uint64_t>(bitmap.height() - 1), 3);
    append(frame, 100, 4); // duration, and nothing of before to be kept
    append(frame, chunksOf(webpOf(bitmap)));
    Data chunks = extendedHead(animated | withAlpha, {40, 30});
    append(chunks, chunk("ANIM", Data(6)));
    append(chunks, chunk("ANMF", frame));
    append(chunks, chunk("ANMF", frame));
    return riff(chunks);
}

Data withWebpExif(Data webp, PixelSize size, const Data& exif) {
    constexpr std::uint32_t withExif = 0x08;
    Data chunks = extendedHead(withExif, size);
    append(chunks, chunksOf(webp));
    append(chunks, chunk("EXIF", exif));
    return riff(chunks);
}

Data gifOf(const Bitmap& bitmap, const GifForm& form) {
    Data bytes;
    int error = 0;
    GifFileType* gif = EGifOpen(
        &bytes,
        [](GifFileType* file, const GifByteType* data, int count) {
            const auto* first = reinterpret_cast<const std::byte*>(data);
            static_cast<Data*>(file->UserData)
                ->insert(static_cast<Data*>(file->UserData)->end(), first, first + count);
            return count;
        },
        &error);
    EGifSetGifVersion(gif, true);
    const Numbered picture(bitmap);
    std::array<GifColorType, 16> colours = {};
    int transparent = NO_TRANSPARENT_COLOR;
    for (std::size_t i = 0; i < picture.colours.size(); ++i) {
        const Pixel& colour = picture.colours[i];
        colours[i] = {static_cast<GifByteType>(colour[0]), static_cast<GifByteType>(colour[1]),
                      static_cast<GifByteType>(colour[2])};
        if (colour[3] < 255)
            transparent = static_cast<int>(i);
    }
    ColorMapObject* const map = GifMakeMapObject(16, colours.data());
    const PixelSize size = {bitmap.width(), bitmap.height()};
    const PixelSize canvas = form.canvas == PixelSize() ? size : form.canvas;
    EGifPutScreenDesc(gif, static_cast<int>(canvas.width), static_cast<int>(canvas.height), 8, 0,
                      map);
    const GraphicsControlBlock control = {DISPOSAL_UNSPECIFIED, false, 10, transparent};
    std::array<GifByteType, 4> extension;
    EGifGCBToExtension(&control, extension.data());
    EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, 4, extension.data());
    putGifPicture(gif, form, size, picture.numbers);
    if (form.isAnimated)
        putGifPicture(gif, form, size, std::vector<std::uint8_t>(picture.numbers.size(), 15));
    GifFreeMapObject(map);
    EGifCloseFile(gif, &error);
    return bytes;
}

Data bmpOf(const Bitmap& bitmap, const BmpForm& form) {
    const bool isCore = form.headSize == 12;
    const Numbered picture(bitmap);
    Data head;
    append(head, form.headSize, 4);
    append(head, static_cast<std::uint64_t>(bitmap.width()), isCore ? 2 : 4);
    append(head, static_cast<std::uint64_t>(form.isTopFirst ? -bitmap.height() : bitmap.height()),
           isCore ? 2 : 4);
    append(head, 1, 2);
    append(head, static_cast<std::uint64_t>(form.bits), 2);
    if (!isCore) {
        append(head, form.compression, 4);
        append(head, 0, 4);
        append(head, 3937, 4); // pixels a metre: 100 an inch
        append(head, 7874, 4);
        append(head, 0, 8);
    }
    if (form.compression == 3)
        for (std::size_t i = 0; i < (form.headSize > 40 ? 4U : 3U); ++i)
            append(head, form.masks[i], 4);
    head.resize(std::max<std::size_t>(head.size(), form.headSize));
    for (int i = 0; form.bits <= 8 && i < 1 << form.bits; ++i)
        for (int c = 2; c >= (isCore ? 0 : -1); --c) {
            const auto number = static_cast<std::size_t>(i);
            const bool isUsed = c >= 0 && number < picture.colours.size();
            append(head,
                   isUsed ? static_cast<std::uint64_t>(
                                picture.colours[number][static_cast<std::size_t>(c)])
                          : 0,
                   1);
        }
    Data result = bytesOf("BM");
    append(result, 0, 8);
    append(result, 14 + head.size(), 4);
    append(result, head);
    if (form.compression == 1 || form.compression == 2) {
        append(result, runLengths(picture, form.compression == 1));
        return result;
    }
    const auto rowSize = static_cast<std::size_t>((bitmap.width() * form.bits + 31) / 32 * 4);
    for (std::int64_t i = 0; i < bitmap.height(); ++i) {
        const std::int64_t y = form.isTopFirst ? i : bitmap.height() - 1 - i;
        std::vector<std::uint8_t> row(rowSize);
        for (std::int64_t x = 0; x < bitmap.width(); ++x) {
            const auto column = static_cast<std::size_t>(x);
            const Pixel pixel = pixelAt(bitmap, x, y);
            const std::uint32_t value =
                form.bits <= 8 ? picture.numbers[static_cast<std::size_t>(y * bitmap.width() + x)]
                : form.compression == 3 ? masked(pixel, form.masks)
                : form.bits == 16       ? masked(pixel, {0x7C00, 0x3E0, 0x1F, 0})
                                        : masked(pixel, {0xFF0000, 0xFF00, 0xFF, 0});
            putPixel(row, column, value, form.bits);
        }
        const auto* first = reinterpret_cast<const std::byte*>(row.data());
        result.insert(result.end(), first, first + row.size());
    }
    setLittle(result, 2, result.size(), 4);
    return result;
}

#ifdef ZORVAN_JPEG_XL

bool readsJpegXL() { return true; }

Data jpegXLOf(const Bitmap& bitmap, int orientation, const Data& exif) {
    const std::unique_ptr<JxlEncoder, decltype(&JxlEncoderDestroy)> encoder(
        JxlEncoderCreate(nullptr), JxlEncoderDestroy);
    if (!exif.empty()) {
        EXPECT_EQ(JxlEncoderUseBoxes(encoder.get()), JXL_ENC_SUCCESS);
        Data box(4);
        append(box, exif);
        EXPECT_EQ(JxlEncoderAddBox(encoder.get(), "Exif",
                                   reinterpret_cast<const std::uint8_t*>(box.data()), box.size(),
                                   JXL_FALSE),
                  JXL_ENC_SUCCESS);
        JxlEncoderCloseBoxes(encoder.get());
    }
    JxlBasicInfo info;
    JxlEncoderInitBasicInfo(&info);
    info.xsize = static_cast<std::uint32_t>(bitmap.width());
    info.ysize = static_cast<std::uint32_t>(bitmap.height());
    info.bits_per_sample = info.alpha_bits = 8;
    info.num_extra_channels = 1;
    info.uses_original_profile = JXL_TRUE;
    info.orientation = static_cast<JxlOrientation>(orientation);
    EXPECT_EQ(JxlEncoderSetBasicInfo(encoder.get(), &info), JXL_ENC_SUCCESS);
    JxlColorEncoding colours;
    JxlColorEncodingSetToSRGB(&colours, JXL_FALSE);
    EXPECT_EQ(JxlEncoderSetColorEncoding(encoder.get(), &colours), JXL_ENC_SUCCESS);
    JxlEncoderFrameSettings* settings = JxlEncoderFrameSettingsCreate(encoder.get(), nullptr);
    JxlEncoderSetFrameLossless(settings, JXL_TRUE);
    constexpr JxlPixelFormat format = {4, JXL_TYPE_UINT8, JXL_NATIVE_ENDIAN, 0};
    const Data pixels = plainPixels(bitmap);
    EXPECT_EQ(JxlEncoderAddImageFrame(settings, &format, pixels.data(), pixels.size()),
              JXL_ENC_SUCCESS);
    JxlEncoderCloseInput(encoder.get());
    Data result(1 << 16);
    auto* next = reinterpret_cast<std::uint8_t*>(result.data());
    std::size_t room = result.size();
    EXPECT_EQ(JxlEncoderProcessOutput(encoder.get(), &next, &room), JXL_ENC_SUCCESS);
    result.resize(result.size() - room);
    return result;
}

#else

bool readsJpegXL() { return false; }

#endif

std::vector<OtherFormat> otherFormats() {
    const std::string svg =
        "<?xml version='1.0'?><!-- a comment --><svg xmlns='http://www.w3.org/2000/svg' width='24' "
        "height='16'><rect width='24' height='16' fill='#009'/><rect x='12' width='12' height='8' "
        "fill='#f09'/><rect y='8' width='12' height='8' fill='#0f9'/><rect x='12' y='8' width='12' "
        "height='8' fill='#ff9'/></svg>";
    std::vector<OtherFormat> result = {{FileFormat::webp, webpOf(quarters(true)), true, 0.5},
                                       {FileFormat::webp, webpOf(quarters(), false), false, 10},
                                       {FileFormat::gif, gifOf(quarters())},
                                       {FileFormat::bmp, bmpOf(quarters())},
                                       {FileFormat::svg, bytesOf(svg), true}};
#ifdef ZORVAN_JPEG_XL
    result.push_back({FileFormat::jpegXL, jpegXLOf(quarters(true)), true, 0.5});
#endif
    return result;
}

} // namespace zorvan::imageio
