// BMP is read here, without a library: what Debian has for it is a part of something large (FFmpeg,
// a toolkit, a graphics editor's loaders) or warns of hostile files, while the format is a header
// and rows.

#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/PixelRows.h>

#include <algorithm>
#include <array>
#include <bit>
#include <vector>

namespace zorvan::imageio {
namespace {

constexpr std::uint64_t fileHeadSize = 14;
constexpr std::uint32_t coreHeadSize = 12;
constexpr std::uint32_t infoHeadSize = 40;

enum Compression : std::uint32_t { plain = 0, rle8 = 1, rle4 = 2, masks = 3, masksWithAlpha = 6 };

std::uint32_t little(Bytes bytes, std::size_t offset, std::size_t width) {
    return static_cast<std::uint32_t>(littleEndian(bytes, offset, width));
}

/// One component within a pixel of 16 or 32 bits.
struct Channel {
    std::uint32_t mask = 0;

    std::uint8_t operator()(std::uint32_t pixel) const noexcept {
        const std::uint64_t largest = mask >> shift();
        return static_cast<std::uint8_t>(
            ((std::uint64_t{pixel & mask} >> shift()) * 255 + largest / 2) / largest);
    }
    int shift() const noexcept { return std::countr_zero(mask); }
};

struct BmpHeader {
    PixelSize size;
    bool topFirst = false;
    int bits = 0;
    std::uint32_t compression = plain;
    /// Red, green, blue and alpha; without alpha the last is 0.
    std::array<Channel, 4> channels = {};
    std::uint64_t pixels = 0;
    std::array<std::array<std::uint8_t, 4>, 256> palette = {};
    std::optional<Outline::Resolution> dpi = {};

    bool isRunLength() const noexcept { return compression == rle8 || compression == rle4; }
    bool hasAlpha() const noexcept { return channels[3].mask != 0; }
    std::uint64_t rowSize() const noexcept {
        return (static_cast<std::uint64_t>(size.width) * static_cast<std::uint64_t>(bits) + 31) /
               32 * 4;
    }
};

void readSize(Bytes info, bool isCore, BmpHeader& header) {
    const auto number = [&](std::size_t offset) {
        return isCore ? std::int64_t{little(info, offset, 2)}
                      : std::int64_t{static_cast<std::int32_t>(little(info, offset, 4))};
    };
    const std::int64_t height = number(isCore ? 6 : 8);
    header.size = {number(4), height < 0 ? -height : height};
    header.topFirst = height < 0;
    header.bits = static_cast<int>(little(info, isCore ? 10 : 14, 2));
}

void readResolution(Bytes info, BmpHeader& header) {
    constexpr double metresPerInch = 0.0254;
    const auto x = static_cast<std::int32_t>(little(info, 24, 4));
    const auto y = static_cast<std::int32_t>(little(info, 28, 4));
    if (x > 0 && y > 0)
        header.dpi = Outline::Resolution{x * metresPerInch, y * metresPerInch};
}

bool hasKnownForm(const BmpHeader& header) {
    const int bits = header.bits;
    switch (header.compression) {
    case plain:
        return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
    case rle8:
        return bits == 8;
    case rle4:
        return bits == 4;
    case masks:
    case masksWithAlpha:
        return bits == 16 || bits == 32;
    default:
        return false;
    }
}

bool isContiguous(std::uint32_t mask) {
    return mask != 0 && std::popcount(mask) + std::countr_zero(mask) + std::countl_zero(mask) == 32;
}

/// `info` goes on behind the header of old files, where the masks then stand.
void readMasks(Bytes info, std::uint32_t infoSize, BmpHeader& header) {
    constexpr std::array<std::uint32_t, 4> of16 = {0x7C00, 0x03E0, 0x001F, 0};
    constexpr std::array<std::uint32_t, 4> of32 = {0xFF0000, 0x00FF00, 0x0000FF, 0};
    const bool areStated = header.compression == masks || header.compression == masksWithAlpha;
    const bool isAlphaStated = infoSize >= 56 || header.compression == masksWithAlpha;
    for (std::size_t i = 0; i < 4; ++i) {
        const std::uint32_t usual = header.bits == 16 ? of16[i] : of32[i];
        const std::uint32_t stated = i < 3 || isAlphaStated ? little(info, 40 + 4 * i, 4) : 0;
        header.channels[i].mask = areStated ? stated : usual;
        if (!isContiguous(header.channels[i].mask) && (i < 3 || header.channels[i].mask != 0))
            throw Failure{reason::damaged};
    }
}

void readPalette(ByteSource& source, std::uint64_t start, std::size_t entrySize,
                 std::uint32_t stated, BmpHeader& header) {
    const std::size_t possible = std::size_t{1} << header.bits;
    const std::size_t count = stated == 0 ? possible : std::min<std::size_t>(stated, possible);
    const Data entries = source.bytes(start, count * entrySize);
    header.palette.fill({0, 0, 0, 255});
    for (std::size_t i = 0; (i + 1) * entrySize <= entries.size(); ++i)
        for (std::size_t c = 0; c < 3; ++c)
            header.palette[i][c] =
                std::to_integer<std::uint8_t>(entries[i * entrySize + 2 - c]); // blue first
}

BmpHeader headerOf(ByteSource& source) {
    const Data head = source.bytes(0, fileHeadSize + 124);
    if (head.size() < fileHeadSize + coreHeadSize)
        throw Failure{reason::cutShort};
    const Bytes info = Bytes(head).subspan(fileHeadSize);
    const std::uint32_t infoSize = little(info, 0, 4);
    const bool isCore = infoSize == coreHeadSize;
    if (!isCore && info.size() < infoHeadSize)
        throw Failure{reason::cutShort};
    BmpHeader header;
    header.pixels = little(head, 10, 4);
    readSize(info, isCore, header);
    if (!isCore) {
        header.compression = little(info, 16, 4);
        readResolution(info, header);
    }
    if (!hasKnownForm(header))
        throw Failure{reason::unsupported};
    if (header.size.width < 1 || header.size.height < 1)
        throw Failure{reason::damaged};
    if (header.bits == 16 || header.bits == 32)
        readMasks(info, infoSize, header);
    if (header.bits <= 8)
        readPalette(source, fileHeadSize + infoSize, isCore ? 3 : 4,
                    isCore ? 0 : little(info, 32, 4), header);
    return header;
}

void convertIndices(const BmpHeader& header, const std::uint8_t* stored, std::uint8_t* rgba) {
    const int bits = header.bits;
    const unsigned mask = (1U << bits) - 1;
    for (std::int64_t x = 0; x < header.size.width; ++x) {
        const std::int64_t bit = x * bits;
        const unsigned index =
            static_cast<unsigned>(stored[bit / 8]) >> (8 - bits - bit % 8) & mask;
        std::copy_n(header.palette[index].data(), 4, rgba + x * 4);
    }
}

void convertBytes(const BmpHeader& header, const std::uint8_t* stored, std::uint8_t* rgba) {
    for (std::int64_t x = 0; x < header.size.width; ++x, stored += 3, rgba += 4) {
        rgba[0] = stored[2];
        rgba[1] = stored[1];
        rgba[2] = stored[0];
        rgba[3] = 255;
    }
}

void convertMasked(const BmpHeader& header, const std::uint8_t* stored, std::uint8_t* rgba) {
    const auto size = static_cast<std::size_t>(header.bits / 8);
    for (std::int64_t x = 0; x < header.size.width; ++x, stored += size) {
        const std::uint32_t pixel = little(std::as_bytes(std::span(stored, size)), 0, size);
        for (std::size_t c = 0; c < 3; ++c)
            rgba[x * 4 + static_cast<std::int64_t>(c)] = header.channels[c](pixel);
        rgba[x * 4 + 3] = header.hasAlpha() ? header.channels[3](pixel) : std::uint8_t{255};
    }
    if (header.hasAlpha())
        premultiply(rgba, header.size.width);
}

/// Turns a row as it is stored into RGBA, premultiplied.
void convertRow(const BmpHeader& header, const std::uint8_t* stored, std::uint8_t* rgba) {
    if (header.bits <= 8)
        return convertIndices(header, stored, rgba);
    if (header.bits == 24)
        return convertBytes(header, stored, rgba);
    convertMasked(header, stored, rgba);
}

/// Unpacks runs of colour numbers, one byte each, the bottom row first.
class RunLengthDecoder {
public:
    explicit RunLengthDecoder(const BmpHeader& header)
        : isWide_(header.compression == rle8), width_(header.size.width),
          height_(header.size.height),
          out_(static_cast<std::size_t>(header.size.width * header.size.height)) {}

    std::vector<std::uint8_t> decode(ByteSource& source, std::uint64_t start) {
        constexpr std::uint64_t maximumSize = std::uint64_t{256} << 20;
        const Data runs = source.bytes(start, maximumSize);
        Bytes rest(runs);
        while (y_ < height_) {
            if (rest.size() < 2)
                throw Failure{reason::cutShort};
            const int count = std::to_integer<int>(rest[0]);
            const int value = std::to_integer<int>(rest[1]);
            rest = rest.subspan(2);
            if (count > 0)
                repeat(count, value);
            else if (value == endOfPicture)
                break;
            else
                rest = rest.subspan(escape(value, rest));
        }
        return std::move(out_);
    }

private:
    enum Escape { endOfLine, endOfPicture, move };

    void put(unsigned index) {
        if (x_ < width_ && y_ < height_)
            out_[static_cast<std::size_t>(y_ * width_ + x_)] = static_cast<std::uint8_t>(index);
        ++x_;
    }

    void repeat(int count, int value) {
        const auto both = static_cast<unsigned>(value);
        for (int i = 0; i < count; ++i)
            put(isWide_ ? both : i % 2 == 0 ? both >> 4 : both & 15);
    }

    /// How many bytes it takes.
    std::size_t escape(int code, Bytes rest) {
        if (code == endOfLine) {
            x_ = 0;
            ++y_;
            return 0;
        }
        const auto pixels = static_cast<std::size_t>(code);
        const std::size_t size = code == move ? 2 : isWide_ ? pixels : (pixels + 1) / 2;
        if (rest.size() < size)
            throw Failure{reason::cutShort};
        if (code == move) {
            x_ += std::to_integer<int>(rest[0]);
            y_ += std::to_integer<int>(rest[1]);
            return size;
        }
        for (std::size_t i = 0; i < pixels; ++i) {
            const auto stored = std::to_integer<unsigned>(rest[isWide_ ? i : i / 2]);
            put(isWide_ ? stored : i % 2 == 0 ? stored >> 4 : stored & 15);
        }
        return std::min(size + size % 2, rest.size()); // filled up to an even length
    }

    bool isWide_;
    std::int64_t width_;
    std::int64_t height_;
    std::vector<std::uint8_t> out_;
    std::int64_t x_ = 0;
    std::int64_t y_ = 0;
};

class BmpReader final : public HeaderReader<BmpHeader> {
public:
    using HeaderReader::HeaderReader;

private:
    BmpHeader readHeader() override { return headerOf(source()); }

    PropertyList::Dictionary readProperties(std::int64_t) override {
        return propertiesOf(
            Outline{.size = header().size, .hasAlpha = header().hasAlpha(), .dpi = header().dpi});
    }

    Bitmap readPicture(std::int64_t, const DecodeOptions& options) override {
        checkSize(header().size);
        checkLength();
        if (header().isRunLength())
            checkProportion(header().size, usualPixels(source().size()));
        PictureSink sink(header().size, wantedSize(header().size, options));
        if (header().isRunLength())
            readRuns(sink);
        else
            readRows(sink);
        return sink.take();
    }

    /// Throws when the file is too short for its size, before memory is asked for that.
    void checkLength() {
        // Of run lengths, a jump of four bytes passes over the most.
        constexpr std::uint64_t pixelsInByte = 255 * 255 / 4;
        const auto width = static_cast<std::uint64_t>(header().size.width);
        const auto height = static_cast<std::uint64_t>(header().size.height);
        const std::uint64_t least =
            header().isRunLength() ? width * height / pixelsInByte : header().rowSize() * height;
        if (header().pixels > source().size() || least > source().size() - header().pixels)
            throw Failure{reason::cutShort};
    }

    /// Where the row that is shown `y` rows below the top is stored.
    std::int64_t storedRow(std::int64_t y) {
        return header().topFirst ? y : header().size.height - 1 - y;
    }

    void readRows(PictureSink& sink) {
        const std::uint64_t rowSize = header().rowSize();
        std::vector<std::byte> row(static_cast<std::size_t>(rowSize));
        for (std::int64_t y = 0; y < header().size.height; ++y) {
            const auto place = header().pixels + static_cast<std::uint64_t>(storedRow(y)) * rowSize;
            if (!source().fill(place, row))
                throw Failure{reason::cutShort};
            convertRow(header(), reinterpret_cast<const std::uint8_t*>(row.data()), sink.row());
            sink.commit();
        }
    }

    void readRuns(PictureSink& sink) {
        const std::vector<std::uint8_t> indices =
            RunLengthDecoder(header()).decode(source(), header().pixels);
        const std::int64_t width = header().size.width;
        for (std::int64_t y = 0; y < header().size.height; ++y) {
            const std::uint8_t* const row = indices.data() + storedRow(y) * width;
            for (std::int64_t x = 0; x < width; ++x)
                std::copy_n(header().palette[row[x]].data(), 4, sink.row() + x * 4);
            sink.commit();
        }
    }
};

} // namespace

bool isBmp(Bytes head) noexcept {
    constexpr std::array<std::uint32_t, 7> headSizes = {12, 40, 52, 56, 64, 108, 124};
    return textOf(head).starts_with("BM") && head.size() >= fileHeadSize + 4 &&
           std::ranges::find(headSizes, little(head, fileHeadSize, 4)) != headSizes.end();
}

void makeBmpReader(std::unique_ptr<ByteSource> source, FileFormat format,
                   std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<BmpReader>(format, std::move(source));
}

} // namespace zorvan::imageio
