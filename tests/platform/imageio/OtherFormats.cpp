#include "OtherFormats.h"
#include <tests/Testing.h>
#include <tests/files/TemporaryFolder.h>

#include <zorvan/platform/imageio/internal/PixelRows.h>

#include <bit>

#include <gif_lib.h>
#include <webp/encode.h>

namespace zorvan::imageio {
namespace {

void append(Data& out, std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i)
        out.push_back(static_cast<std::byte>(value >> 8 * i & 255));
}

void append(Data& out, const Data& more) { out.insert(out.end(), more.begin(), more.end()); }

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

std::vector<std::uint8_t> plainPixels(const Bitmap& bitmap) {
    std::vector<std::uint8_t> result(static_cast<std::size_t>(bitmap.byteCount()));
    unpremultiply(bitmap.data(), result.data(), bitmap.width() * bitmap.height());
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

/// Appends a pixel to a row; those of less than a byte fill it from the top.
void appendPixel(Data& row, std::int64_t x, std::uint32_t value, int bits) {
    if (bits >= 8)
        return append(row, value, bits / 8);
    const auto used = static_cast<int>(x * bits % 8);
    if (used == 0)
        row.emplace_back();
    row.back() |= static_cast<std::byte>(value << 8 >> (used + bits));
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

/// Rows of colour numbers, the bottom one first, in runs, in jumps and in the
/// open.
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

Data sample(const std::string& name) {
    return bytesOf(::text(std::string(ZORVAN_IMAGE_SAMPLES "/") + name));
}

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
    const std::vector<std::uint8_t> rgba = plainPixels(bitmap);
    const int width = static_cast<int>(bitmap.width()), height = static_cast<int>(bitmap.height());
    std::uint8_t* bytes = nullptr;
    const std::size_t size =
        isLossless ? WebPEncodeLosslessRGBA(rgba.data(), width, height, width * 4, &bytes)
                   : WebPEncodeRGBA(rgba.data(), width, height, width * 4, 95, &bytes);
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
    for (std::size_t i = 0; form.bits <= 8 && i < std::size_t{1} << form.bits; ++i) {
        const Pixel colour = i < picture.colours.size() ? picture.colours[i] : Pixel{};
        for (const int component : {colour[2], colour[1], colour[0]})
            append(head, static_cast<std::uint64_t>(component), 1);
        append(head, 0, isCore ? 0 : 1);
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
        Data row;
        for (std::int64_t x = 0; x < bitmap.width(); ++x) {
            const Pixel pixel = pixelAt(bitmap, x, y);
            const std::uint32_t value =
                form.bits <= 8 ? picture.numbers[static_cast<std::size_t>(y * bitmap.width() + x)]
                : form.compression == 3 ? masked(pixel, form.masks)
                : form.bits == 16       ? masked(pixel, {0x7C00, 0x3E0, 0x1F, 0})
                                        : masked(pixel, {0xFF0000, 0xFF00, 0xFF, 0});
            appendPixel(row, x, value, form.bits);
        }
        row.resize(rowSize);
        append(result, row);
    }
    return result;
}

std::vector<OtherFormat> otherFormats() {
    std::vector<OtherFormat> result = {{FileFormat::webp, webpOf(quarters(true)), true, 0.5},
                                       {FileFormat::webp, webpOf(quarters(), false), false, 10},
                                       {FileFormat::gif, gifOf(quarters())},
                                       {FileFormat::bmp, bmpOf(quarters())},
                                       {FileFormat::svg, sample("quarters.svg"), true}};
#ifdef ZORVAN_JPEG_XL
    result.push_back({FileFormat::jpegXL, sample("turned.jxl"), true, 0.5});
#endif
    return result;
}

} // namespace zorvan::imageio
