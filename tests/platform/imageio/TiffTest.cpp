#include "Support.h"
#include <tests/Testing.h>
#include <tests/files/TemporaryFolder.h>

#include <zorvan/platform/imageio/internal/TiffEntries.h>

#include <tiffio.h>

namespace zorvan::imageio {
namespace {

constexpr std::uint32_t width = 37;
constexpr std::uint32_t height = 21;

struct Kind {
    int photometric;
    int bits;
    int samples;
    int format = SAMPLEFORMAT_UINT;
    int compression = COMPRESSION_NONE;
    bool planar = false;
    bool tiled = false;
    int extra = -1;
    std::uint32_t rowsPerStrip = 5;
};

/// Between 0 and 1.
double level(std::uint32_t x, std::uint32_t y, int sample) {
    const std::uint32_t mixed = x * 7 + y * 11 + static_cast<std::uint32_t>(sample) * 60;
    return static_cast<double>(mixed % 256) / 255;
}

void put(std::uint8_t* row, std::size_t index, const Kind& kind, double value) {
    const auto store = [&](auto number) {
        std::memcpy(row + index * sizeof number, &number, sizeof number);
    };
    if (kind.format == SAMPLEFORMAT_IEEEFP)
        return kind.bits == 32 ? store(static_cast<float>(value)) : store(value);
    // Signed samples count from the least on.
    const std::uint32_t sign = kind.format == SAMPLEFORMAT_INT ? 1U << (kind.bits - 1) : 0;
    if (kind.bits == 32)
        return store(static_cast<std::uint32_t>(value * 4294967295.0) ^ sign);
    const auto number = static_cast<unsigned>(value * ((1 << kind.bits) - 1) + 0.5) ^ sign;
    if (kind.bits == 16)
        return store(static_cast<std::uint16_t>(number));
    for (int i = 0; i < kind.bits; ++i) {
        const std::size_t bit =
            index * static_cast<std::size_t>(kind.bits) + static_cast<std::size_t>(i);
        if (number >> (kind.bits - 1 - i) & 1)
            row[bit / 8] |= static_cast<std::uint8_t>(128 >> bit % 8);
    }
}

/// Fills rows [y, y + rows) and columns from `x` on, for all samples or for the
/// one of a plane.
std::vector<std::uint8_t> block(const Kind& kind, std::uint32_t x0, std::uint32_t columns,
                                std::uint32_t y0, std::uint32_t rows, int plane,
                                std::size_t rowSize) {
    std::vector<std::uint8_t> out(rowSize * rows);
    for (std::uint32_t y = 0; y < rows; ++y)
        for (std::uint32_t x = 0; x < columns; ++x)
            for (int s = 0; s < (kind.planar ? 1 : kind.samples); ++s) {
                const int sample = kind.planar ? plane : s;
                const std::size_t index =
                    std::size_t{x} * static_cast<std::size_t>(kind.planar ? 1 : kind.samples) +
                    static_cast<std::size_t>(s);
                put(out.data() + rowSize * y, index, kind, level(x0 + x, y0 + y, sample));
            }
    return out;
}

void writePixels(TIFF* tiff, const Kind& kind) {
    const std::uint32_t columns = kind.tiled ? 16 : width, rows = kind.tiled ? 16 : 1;
    const tmsize_t rowSize = kind.tiled ? TIFFTileRowSize(tiff) : TIFFScanlineSize(tiff);
    for (int plane = 0; plane < (kind.planar ? kind.samples : 1); ++plane)
        for (std::uint32_t y = 0; y < height; y += rows)
            for (std::uint32_t x = 0; x < width; x += columns) {
                auto data =
                    block(kind, x, columns, y, rows, plane, static_cast<std::size_t>(rowSize));
                const auto sample = static_cast<std::uint16_t>(plane);
                if (kind.tiled)
                    TIFFWriteTile(tiff, data.data(), x, y, 0, sample);
                else
                    TIFFWriteScanline(tiff, data.data(), y, sample);
            }
}

void setFields(TIFF* tiff, const Kind& kind) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, kind.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, kind.samples);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, kind.format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, kind.photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, kind.compression);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_BOTRIGHT);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG,
                 kind.planar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    if (kind.tiled) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, 16);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, 16);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, kind.rowsPerStrip);
    }
    if (kind.extra >= 0) {
        const auto extra = static_cast<std::uint16_t>(kind.extra);
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra);
    }
    std::array<std::uint16_t, 256> red, green, blue;
    for (std::size_t i = 0; i < 256; ++i) {
        red[i] = static_cast<std::uint16_t>(i * 257);
        green[i] = static_cast<std::uint16_t>((255 - i) * 257);
        blue[i] = 0x8080;
    }
    if (kind.photometric == PHOTOMETRIC_PALETTE)
        TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
}

Data written(const std::function<void(TIFF*)>& work) {
    const TemporaryFolder folder;
    const std::string path = folder.path() / "picture.tiff";
    TIFF* tiff = TIFFOpen(path.c_str(), "w");
    work(tiff);
    TIFFClose(tiff);
    return bytesOf(::text(path));
}

Data write(const Kind& kind) {
    return written([&](TIFF* tiff) {
        setFields(tiff, kind);
        writePixels(tiff, kind);
    });
}

Pixel expectedPixel(const Kind& kind, std::uint32_t x, std::uint32_t y) {
    const int largest = (1 << std::min(kind.bits, 16)) - 1;
    const auto sample = [&](int s) {
        return kind.bits < 8 ? std::floor(level(x, y, s) * largest + 0.5) / largest
                             : level(x, y, s);
    };
    const bool isMultiplied = kind.extra == EXTRASAMPLE_ASSOCALPHA;
    const bool hasAlpha = isMultiplied || kind.extra == EXTRASAMPLE_UNASSALPHA;
    const double alpha = hasAlpha ? sample(kind.samples - 1) : 1, first = sample(0);
    std::array<double, 3> rgb = {first, first, first};
    if (kind.photometric == PHOTOMETRIC_RGB)
        rgb = {first, sample(1), sample(2)};
    for (int c = 0; c < 3 && kind.photometric == PHOTOMETRIC_SEPARATED; ++c)
        rgb[static_cast<std::size_t>(c)] = (1 - sample(c)) * (1 - sample(3));
    if (kind.photometric == PHOTOMETRIC_MINISWHITE)
        rgb.fill(1 - first);
    if (kind.photometric == PHOTOMETRIC_PALETTE)
        rgb = {first * largest / 255, 1 - first * largest / 255, 128 / 255.0};
    Pixel pixel = {0, 0, 0, static_cast<int>(alpha * 255 + 0.5)};
    for (std::size_t c = 0; c < 3; ++c) {
        const double part = isMultiplied ? std::min(rgb[c], alpha) : rgb[c] * alpha;
        pixel[c] = static_cast<int>(part * 255 + 0.5);
    }
    return pixel;
}

TEST(Tiff, EveryLayoutDecodes) {
    constexpr int rgb = PHOTOMETRIC_RGB, grey = PHOTOMETRIC_MINISBLACK;
    constexpr int uint = SAMPLEFORMAT_UINT, real = SAMPLEFORMAT_IEEEFP;
    constexpr int plain = COMPRESSION_NONE, lzw = COMPRESSION_LZW;
    constexpr int alpha = EXTRASAMPLE_UNASSALPHA;
    std::vector<Kind> kinds = {{PHOTOMETRIC_PALETTE, 4, 1},
                               {PHOTOMETRIC_PALETTE, 8, 1},
                               {PHOTOMETRIC_MINISWHITE, 1, 1},
                               {PHOTOMETRIC_MINISWHITE, 8, 1},
                               {grey, 32, 1, real},
                               {grey, 8, 2, uint, plain, false, false, alpha},
                               {rgb, 10, 4, uint, plain, false, false, alpha},
                               {rgb, 16, 4, uint, lzw, false, false, alpha},
                               {rgb, 8, 3, SAMPLEFORMAT_INT},
                               {rgb, 12, 3, uint, lzw},
                               {rgb, 16, 3, uint, plain, true},
                               {rgb, 8, 3, uint, lzw, true},
                               {rgb, 8, 3, uint, COMPRESSION_ADOBE_DEFLATE, false, true},
                               {rgb, 8, 4, uint, lzw, true, true, alpha},
                               {rgb, 12, 3, uint, plain, true, true},
                               {grey, 1, 1, uint, plain, false, true},
                               {rgb, 64, 3, real},
                               {rgb, 8, 3, uint, COMPRESSION_PACKBITS},
                               {PHOTOMETRIC_SEPARATED, 8, 4},
                               {PHOTOMETRIC_SEPARATED, 16, 4}};
    for (const int bits : {1, 2, 4, 8, 12, 16, 32})
        kinds.push_back({grey, bits, 1});
    for (const int bits : {4, 8, 16, 32})
        kinds.push_back({grey, bits, 1, SAMPLEFORMAT_INT});
    for (const int extra : {alpha, EXTRASAMPLE_ASSOCALPHA, EXTRASAMPLE_UNSPECIFIED})
        kinds.push_back({rgb, 8, 4, uint, plain, false, false, extra});
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(&kind - kinds.data());
        const Data bytes = write(kind);
        const auto properties = propertiesOf(bytes);
        EXPECT_EQ(number(properties, "Depth"), kind.bits);
        EXPECT_EQ(number(properties, "Orientation"), 3);
        EXPECT_EQ(number(properties, "{TIFF}", "Compression"), kind.compression);
        const Bitmap picture = decoded(bytes);
        ASSERT_EQ(picture.width(), width);
        ASSERT_EQ(picture.height(), height);
        expectPixels(picture, [&](std::int64_t x, std::int64_t y) {
            return expectedPixel(kind, static_cast<std::uint32_t>(x),
                                 static_cast<std::uint32_t>(y));
        });
    }
}

TEST(Tiff, TilesMayFillTheRows) {
    const Data bytes = written([](TIFF* tiff) {
        setFields(tiff,
                  {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 8, .samples = 1, .tiled = true});
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 32);
        std::vector<std::uint8_t> tile(256, 90);
        for (std::uint32_t i = 0; i < 4; ++i)
            TIFFWriteEncodedTile(tiff, i, tile.data(), 256);
    });
    EXPECT_EQ(componentsAt(decoded(bytes), 31, 20), (Pixel{90, 90, 90, 255}));
}

TEST(Tiff, JpegInsideAndOtherColourSpacesDecode) {
    // A flat grey is the same in each of them, whatever the subsampling.
    for (const auto& [colours, compression] : {std::pair(PHOTOMETRIC_YCBCR, COMPRESSION_JPEG),
                                               {PHOTOMETRIC_RGB, COMPRESSION_JPEG},
                                               {PHOTOMETRIC_YCBCR, COMPRESSION_LZW}}) {
        SCOPED_TRACE(testing::Message() << colours << ' ' << compression);
        const Kind kind = {colours, 8, 3, SAMPLEFORMAT_UINT, compression, false, false, -1, 16};
        Data bytes = written([&, compression = compression](TIFF* tiff) {
            setFields(tiff, kind);
            if (compression != COMPRESSION_JPEG)
                TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
            std::vector<std::uint8_t> strip(std::size_t{width} * 3 * 16, 128);
            for (std::uint32_t i = 0; i < TIFFNumberOfStrips(tiff); ++i)
                TIFFWriteEncodedStrip(tiff, i, strip.data(), TIFFVStripSize(tiff, i == 0 ? 16 : 5));
        });
        const Pixel got = componentsAt(decoded(bytes), width - 1, height - 1);
        for (std::size_t c = 0; c < 3; ++c)
            EXPECT_NEAR(got[c], 128, 2);
        std::fill_n(&bytes[8], 8, std::byte{0xFF}); // the start of the first strip
        EXPECT_EQ(errorOf(bytes), "the file is damaged");
    }
}

TEST(Tiff, ABlankPageInNextToNothingIsReadAndTakesNoMemoryUnlessAllOfItIsThere) {
    constexpr std::uint32_t side = 8400;
    Data bytes = written([](TIFF* tiff) {
        setFields(tiff, {PHOTOMETRIC_MINISWHITE, 1, 1, SAMPLEFORMAT_UINT, COMPRESSION_LZW, false,
                         false, -1, side / 2});
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, side);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, side);
        std::vector<std::uint8_t> row(side / 8);
        for (std::uint32_t y = 0; y < side; ++y)
            TIFFWriteScanline(tiff, row.data(), y);
    });
    EXPECT_LT(bytes.size(), 15'000);
    EXPECT_EQ(componentsAt(decoded(bytes), side - 1, side - 1), (Pixel{255, 255, 255, 255}));
    std::fill_n(&bytes[bytes.size() / 2], 100, std::byte{0xFF}); // in the second strip
    EXPECT_EQ(errorWithin(std::uint64_t{128} << 20, bytes), "the file is damaged");
}

TEST(Tiff, TagsThatCannotBeReadAreLeftOutUnlessThereIsTooMuchToRead) {
    constexpr std::uint32_t megabyte = 1 << 20, beyond = 0x7FFFFFFF;
    const auto errorWith = [](TiffEntry tag, int tagCount) {
        std::vector<TiffEntry> entries;
        appendNumber(tag.value, 8, 4, false); // where it is; and 8 by 8 pixels of 8 bits
        for (const std::uint16_t needed : std::array<std::uint16_t, 5>{256, 257, 258, 273, 278})
            entries.push_back({needed, TiffEntry::longNumber, 1, tag.value});
        for (; tagCount > 0; --tagCount, ++tag.tag)
            entries.push_back(tag);
        Data bytes = bytesOf(std::string_view("II*\0\b\0\0\0", 8));
        appendTiffDirectory(bytes, entries, {});
        bytes.resize(bytes.size() + megabyte);
        return errorOf(bytes);
    };
    for (const TiffEntry& tag : {TiffEntry{TIFFTAG_ICCPROFILE, 7, 2 * megabyte, {}},
                                 {TIFFTAG_COPYRIGHT, 2, beyond, {}},
                                 {50000, 99, beyond, {}},
                                 {50000, 7, beyond, {}},
                                 {50000, 7, megabyte, {}}})
        EXPECT_EQ(errorWith(tag, 10), "") << tag.tag << ' ' << tag.count;
    for (const std::uint32_t count : {megabyte, beyond})
        EXPECT_EQ(errorWith({50000, 7, count, {}}, 900), "the file is damaged");
}

void writePage(TIFF* tiff, std::uint32_t kind) {
    setFields(tiff, {PHOTOMETRIC_RGB, 8, 3});
    TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, kind);
    writePixels(tiff, {PHOTOMETRIC_RGB, 8, 3});
    TIFFWriteDirectory(tiff);
}

TEST(Tiff, ADirectoryThatCannotBeReadHidesNoOther) {
    Data bytes = written([](TIFF* tiff) {
        for (int page = 0; page < 3; ++page)
            writePage(tiff, 0);
    });
    const auto link = [&](std::size_t at) { return at + 2 + littleEndian(bytes, at, 2) * 12; };
    const std::size_t first = littleEndian(bytes, 4, 4);
    const std::size_t second = littleEndian(bytes, link(first), 4);
    std::copy_n(&bytes[4], 4, &bytes[link(littleEndian(bytes, link(second), 4))]); // without end
    EXPECT_EQ(ImageReader::open(bytes)->count(), 3);
    for (const std::size_t unsound : {second, first}) {
        Data damaged = bytes;
        damaged[unsound + 2 + 12] = std::byte{99}; // no width
        const auto reader = ImageReader::open(damaged);
        EXPECT_EQ(reader->count(), 2);
        EXPECT_TRUE(reader->decode(1, {})) << reader->error();
    }
    bytes[second + 1] = std::byte{4}; // more than a thousand entries, and no link behind them
    EXPECT_EQ(ImageReader::open(bytes)->count(), 1);
}

TEST(Tiff, AReducedVersionIsTheThumbnailAndNoPage) {
    const Data inChain = written([](TIFF* tiff) {
        writePage(tiff, 0);
        writePage(tiff, FILETYPE_REDUCEDIMAGE);
        writePage(tiff, 0);
    });
    const Data below = written([](TIFF* tiff) {
        const std::array<std::uint64_t, 1> none = {0};
        TIFFSetField(tiff, TIFFTAG_SUBIFD, 1, none.data());
        writePage(tiff, 0);
        writePage(tiff, FILETYPE_REDUCEDIMAGE);
        writePage(tiff, 0);
    });
    for (const Data& bytes : {inChain, below}) {
        const auto reader = ImageReader::open(bytes);
        EXPECT_EQ(reader->count(), 2);
        EXPECT_TRUE(reader->embeddedThumbnail(0)) << reader->error();
        EXPECT_FALSE(reader->embeddedThumbnail(1));
        EXPECT_EQ(reader->error(), "the file holds no thumbnail");
        EXPECT_TRUE(reader->decode(1, {})) << reader->error();
    }
}

} // namespace
} // namespace zorvan::imageio
