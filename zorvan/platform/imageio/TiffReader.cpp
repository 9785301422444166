#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Iptc.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/TiffFile.h>
#include <zorvan/platform/imageio/internal/TiffSamples.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan::imageio {
namespace {

/// A strip that decodes to more is read row by row.
constexpr std::int64_t largestWholeStrip = 4 << 20;

std::int64_t usualPixelsOf(const TiffFile& file) { return usualPixels(file.source().size()); }

/// What a strip or a row of tiles may decode to, in bytes.
std::int64_t largestBand(const TiffFile& file) {
    return std::clamp(usualPixelsOf(file), std::int64_t{1} << 26, std::int64_t{1} << 30);
}

/// The rows of samples that one strip, or one row of tiles, holds: a plane for each sample, or one.
class Band {
public:
    Band(const TiffFile& file, const TiffLayout& layout, std::int64_t rowSize, std::int64_t rows)
        : file_(file), layout_(layout), planeCount_(layout.planar ? layout.sampleCount : 1),
          rowSize_(rowSize), rowCount_(rows) {
        if (rowSize <= 0 || rows <= 0 || rowSize > largestBand(file) / rows / planeCount_)
            throw Failure{reason::tooLarge};
        planes_.resize(static_cast<std::size_t>(planeCount_));
        pointers_.resize(planes_.size());
        for (auto& plane : planes_)
            plane.assign(static_cast<std::size_t>(rowSize * rows), 0);
        if (layout_.tiled)
            tile_.resize(
                static_cast<std::size_t>(std::max<tmsize_t>(0, TIFFTileSize(file_.get()))));
    }

    std::int64_t rowCount() const noexcept { return rowCount_; }

    /// Reads what begins at row `y`.
    void load(std::int64_t y) {
        for (int plane = 0; plane < planeCount_; ++plane)
            layout_.tiled ? loadTiles(y, plane) : loadStrip(y, plane);
    }

    std::span<const std::uint8_t* const> row(std::int64_t y) {
        for (std::size_t plane = 0; plane < static_cast<std::size_t>(planeCount_); ++plane)
            pointers_[plane] = planes_[plane].data() + y * rowSize_;
        return {pointers_.data(), static_cast<std::size_t>(planeCount_)};
    }

private:
    void loadStrip(std::int64_t y, int plane) {
        const std::uint32_t strip = TIFFComputeStrip(file_.get(), static_cast<std::uint32_t>(y),
                                                     static_cast<std::uint16_t>(plane));
        file_.checkWithinFile(strip);
        const std::int64_t rows = std::min(rowCount_, layout_.size.height - y);
        auto& out = planes_[static_cast<std::size_t>(plane)];
        if (TIFFReadEncodedStrip(file_.get(), strip, out.data(), rows * rowSize_) !=
            rows * rowSize_)
            file_.fail();
    }

    void loadTiles(std::int64_t y, int plane) {
        const auto width = file_.fieldOrDefault<std::uint32_t>(TIFFTAG_TILEWIDTH, 0);
        const std::int64_t tileRowSize = TIFFTileRowSize(file_.get());
        const std::int64_t rows = std::min(rowCount_, layout_.size.height - y);
        auto& out = planes_[static_cast<std::size_t>(plane)];
        std::int64_t offset = 0;
        for (std::int64_t x = 0; x < layout_.size.width; x += width, offset += tileRowSize) {
            const std::uint32_t tile = TIFFComputeTile(file_.get(), static_cast<std::uint32_t>(x),
                                                       static_cast<std::uint32_t>(y), 0,
                                                       static_cast<std::uint16_t>(plane));
            file_.checkWithinFile(tile);
            const auto size = static_cast<tmsize_t>(tile_.size());
            if (TIFFReadEncodedTile(file_.get(), tile, tile_.data(), size) != size)
                file_.fail();
            for (std::int64_t row = 0; row < rows; ++row)
                std::copy_n(tile_.data() + row * tileRowSize,
                            std::min(tileRowSize, rowSize_ - offset),
                            out.data() + row * rowSize_ + offset);
        }
    }

    const TiffFile& file_;
    const TiffLayout& layout_;
    int planeCount_;
    std::int64_t rowSize_;
    std::int64_t rowCount_;
    std::vector<std::vector<std::uint8_t>> planes_ = {};
    std::vector<const std::uint8_t*> pointers_ = {};
    std::vector<std::uint8_t> tile_ = {};
};

/// Band by band, of so many rows of so many bytes.
void readBands(const TiffFile& file, const TiffLayout& layout, std::int64_t rowSize,
               std::int64_t bandHeight, PictureSink& sink) {
    Band band(file, layout, rowSize, bandHeight);
    TiffSamples samples(file, layout);
    for (std::int64_t y = 0; y < layout.size.height; y += band.rowCount()) {
        band.load(y);
        const std::int64_t rows = std::min(band.rowCount(), layout.size.height - y);
        for (std::int64_t row = 0; row < rows; ++row) {
            samples.convert(band.row(row), sink.row());
            sink.commit();
        }
    }
}

void readTiled(const TiffFile& file, const TiffLayout& layout, PictureSink& sink) {
    const std::int64_t tileWidth = file.fieldOrDefault<std::uint32_t>(TIFFTAG_TILEWIDTH, 0);
    const std::int64_t tileHeight = file.fieldOrDefault<std::uint32_t>(TIFFTAG_TILELENGTH, 0);
    const std::int64_t tileRowSize = TIFFTileRowSize(file.get());
    const std::int64_t samplesInRow = tileWidth * (layout.planar ? 1 : layout.sampleCount);
    if (tileWidth < 1 || tileHeight < 1 || tileRowSize * 8 != samplesInRow * layout.bits)
        throw Failure{reason::damaged};
    const std::int64_t tilesAcross = (layout.size.width + tileWidth - 1) / tileWidth;
    const std::int64_t tilesDown = (layout.size.height + tileHeight - 1) / tileHeight;
    const PixelSize covered = {tileWidth * tilesAcross, tileHeight * tilesDown};
    if (tileRowSize > largestBand(file) / tilesAcross ||
        isOutOfProportion(covered, 4 * layout.size.width * layout.size.height))
        throw Failure{reason::tooLarge};
    readBands(file, layout, tileRowSize * tilesAcross, tileHeight, sink);
}

void readRowByRow(const TiffFile& file, const TiffLayout& layout, PictureSink& sink) {
    const auto rowsPerStrip = file.fieldOrDefault<std::uint32_t>(TIFFTAG_ROWSPERSTRIP, 0xFFFFFFFF);
    TiffSamples samples(file, layout);
    std::vector<std::uint8_t> row(static_cast<std::size_t>(TIFFScanlineSize(file.get())));
    const std::array<const std::uint8_t*, 1> planes = {row.data()};
    for (std::int64_t y = 0; y < layout.size.height; ++y) {
        const auto line = static_cast<std::uint32_t>(y);
        if (line % rowsPerStrip == 0)
            file.checkWithinFile(TIFFComputeStrip(file.get(), line, 0));
        if (TIFFReadScanline(file.get(), row.data(), line, 0) != 1)
            file.fail();
        samples.convert(planes, sink.row());
        sink.commit();
    }
}

void readStrips(const TiffFile& file, const TiffLayout& layout, PictureSink& sink) {
    const std::int64_t rowSize = TIFFScanlineSize(file.get());
    const std::int64_t samplesInRow = layout.size.width * (layout.planar ? 1 : layout.sampleCount);
    if (rowSize < (samplesInRow * layout.bits + 7) / 8)
        throw Failure{reason::damaged};
    const auto rowsPerStrip = file.fieldOrDefault<std::uint32_t>(TIFFTAG_ROWSPERSTRIP, 0xFFFFFFFF);
    const std::int64_t rows = std::min<std::int64_t>(rowsPerStrip, layout.size.height);
    // Strips may share their bytes, and samples be many.
    constexpr std::int64_t alwaysBearable = std::int64_t{1} << 32;
    if (rows < 1)
        throw Failure{reason::damaged};
    if (rowSize > std::max(alwaysBearable, usualPixelsOf(file)) / layout.size.height)
        throw Failure{reason::tooLarge};
    if (!layout.planar && rowSize > largestWholeStrip / rows)
        return readRowByRow(file, layout, sink);
    readBands(file, layout, rowSize, rows, sink);
}

/// For what is not laid out plainly: the library's own conversion, which also multiplies by the
/// alpha.
void readThroughLibrary(const TiffFile& file, const TiffLayout& layout, PictureSink& sink) {
    std::array<char, 1024> message = {};
    TIFFRGBAImage image = {};
    if (TIFFRGBAImageOK(file.get(), message.data()) != 1)
        throw Failure{reason::unsupported};
    if (TIFFRGBAImageBegin(&image, file.get(), 1, message.data()) != 1)
        file.fail();
    const std::unique_ptr<TIFFRGBAImage, decltype(&TIFFRGBAImageEnd)> end(&image, TIFFRGBAImageEnd);
    image.req_orientation = image.orientation; // as stored
    const auto rowsPerPiece = file.fieldOrDefault<std::uint32_t>(
        layout.tiled ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP, 0xFFFFFFFF);
    const std::int64_t rows = std::clamp<std::int64_t>(rowsPerPiece, 1, layout.size.height);
    if (isOutOfProportion({layout.size.width, rows}, usualPixelsOf(file)))
        throw Failure{reason::tooLarge};
    std::vector<std::uint32_t> raster(static_cast<std::size_t>(layout.size.width * rows));
    for (std::int64_t y = 0; y < layout.size.height; y += rows) {
        const std::int64_t count = std::min(rows, layout.size.height - y);
        image.row_offset = static_cast<int>(y);
        if (TIFFRGBAImageGet(&image, raster.data(), static_cast<std::uint32_t>(layout.size.width),
                             static_cast<std::uint32_t>(count)) != 1)
            file.fail();
        const std::uint32_t* pixel = raster.data();
        for (std::int64_t row = 0; row < count; ++row) {
            std::uint8_t* out = sink.row();
            for (std::int64_t x = 0; x < layout.size.width; ++x, ++pixel, out += 4) {
                out[0] = static_cast<std::uint8_t>(TIFFGetR(*pixel));
                out[1] = static_cast<std::uint8_t>(TIFFGetG(*pixel));
                out[2] = static_cast<std::uint8_t>(TIFFGetB(*pixel));
                out[3] = static_cast<std::uint8_t>(TIFFGetA(*pixel));
            }
            sink.commit();
        }
    }
}

void readRows(const TiffFile& file, const TiffLayout& layout, PictureSink& sink) {
    if (!layout.isPlain())
        readThroughLibrary(file, layout, sink);
    else if (layout.tiled)
        readTiled(file, layout, sink);
    else
        readStrips(file, layout, sink);
}

Bitmap readPage(const TiffFile& file, const DecodeOptions& options) {
    const TiffLayout layout = layoutOf(file);
    checkSize(layout.size);
    const PixelSize wanted = wantedSize(layout.size, options);
    if (isOutOfProportion(wanted, usualPixelsOf(file))) {
        // A blank page is coded in next to nothing, so this is no reason to refuse it. But it is
        // read to its end before there is memory for it.
        PictureSink trial(layout.size, {1, 1});
        readRows(file, layout, trial);
    }
    PictureSink sink(layout.size, wanted);
    readRows(file, layout, sink);
    return sink.take();
}

struct Field {
    std::uint32_t tag;
    const char* key;
};

constexpr std::array<Field, 9> texts = {{{TIFFTAG_DOCUMENTNAME, "DocumentName"},
                                         {TIFFTAG_IMAGEDESCRIPTION, "ImageDescription"},
                                         {TIFFTAG_MAKE, "Make"},
                                         {TIFFTAG_MODEL, "Model"},
                                         {TIFFTAG_SOFTWARE, "Software"},
                                         {TIFFTAG_DATETIME, "DateTime"},
                                         {TIFFTAG_ARTIST, "Artist"},
                                         {TIFFTAG_HOSTCOMPUTER, "HostComputer"},
                                         {TIFFTAG_COPYRIGHT, "Copyright"}}};

constexpr std::array<Field, 4> shorts = {{{TIFFTAG_COMPRESSION, "Compression"},
                                          {TIFFTAG_PHOTOMETRIC, "PhotometricInterpretation"},
                                          {TIFFTAG_ORIENTATION, "Orientation"},
                                          {TIFFTAG_RESOLUTIONUNIT, "ResolutionUnit"}}};

PropertyList::Dictionary tiffSection(const TiffFile& file) {
    PropertyList::Dictionary result;
    for (const Field& field : texts)
        if (const auto text = file.field<const char*>(field.tag); text && *text)
            result.emplace(field.key, textFrom(*text));
    for (const Field& field : shorts)
        if (const auto value = file.field<std::uint16_t>(field.tag))
            result.emplace(field.key, *value);
    if (const auto x = file.field<float>(TIFFTAG_XRESOLUTION); x && std::isfinite(*x))
        result.emplace("XResolution", *x);
    if (const auto y = file.field<float>(TIFFTAG_YRESOLUTION); y && std::isfinite(*y))
        result.emplace("YResolution", *y);
    if (TIFFIsTiled(file.get()) != 0) {
        result.emplace("TileWidth", file.fieldOrDefault<std::uint32_t>(TIFFTAG_TILEWIDTH, 0));
        result.emplace("TileLength", file.fieldOrDefault<std::uint32_t>(TIFFTAG_TILELENGTH, 0));
    }
    return result;
}

std::string_view colorModelOf(int photometric) {
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        return "Gray";
    case PHOTOMETRIC_SEPARATED:
        return "CMYK";
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
        return "Lab";
    default:
        return "RGB";
    }
}

void addBlocks(const TiffFile& file, PropertyList::Dictionary& properties) {
    std::uint32_t count = 0;
    const void* bytes = nullptr;
    if (TIFFGetField(file.get(), TIFFTAG_PHOTOSHOP, &count, &bytes) == 1 && bytes)
        addPhotoshopProperties({static_cast<const std::byte*>(bytes), count}, properties);
}

/// The EXIF value, 1 to 8, of the current directory.
std::optional<int> tiffOrientation(const TiffFile& file) {
    const auto value = file.field<std::uint16_t>(TIFFTAG_ORIENTATION);
    const bool known = value && *value >= 1 && *value <= 8;
    return known ? std::optional<int>(*value) : std::nullopt;
}

PropertyList::Dictionary tiffProperties(const TiffFile& file) {
    const int photometric = file.field<std::uint16_t>(TIFFTAG_PHOTOMETRIC).value_or(0);
    const TiffLayout layout = layoutOf(file);
    if (layout.size.width < 1 || layout.size.height < 1)
        throw Failure{reason::damaged};
    PropertyList::Dictionary tiff = tiffSection(file);
    PropertyList::Dictionary result =
        propertiesOf({.size = layout.size,
                      .depth = layout.bits,
                      .colorModel = colorModelOf(photometric),
                      .hasAlpha = layout.alpha != TiffLayout::Alpha::none,
                      .orientation = tiffOrientation(file),
                      .dpi = resolutionIn(tiff)});
    result.emplace("{TIFF}", std::move(tiff));
    addBlocks(file, result);
    const ExifPlaces places = {
        .exif = file.field<std::uint64_t>(TIFFTAG_EXIFIFD).value_or(0),
        .gps = file.field<std::uint64_t>(TIFFTAG_GPSIFD).value_or(0),
    };
    addExifProperties(exifBlockFrom(file.source(), file.form(), places), result);
    return result;
}

class TiffReader final : public FormatReader {
public:
    using FormatReader::FormatReader;

private:
    TiffFile& file() {
        if (!file_)
            file_.emplace(source());
        return *file_;
    }

    const TiffFile::Page& page(std::int64_t index) {
        return file().pages()[static_cast<std::size_t>(index)];
    }

    std::int64_t readCount() override { return static_cast<std::int64_t>(file().pages().size()); }

    PropertyList::Dictionary readProperties(std::int64_t index) override {
        file().select(page(index).directory);
        return tiffProperties(file());
    }

    std::optional<int> readOrientation(std::int64_t index) override {
        file().select(page(index).directory);
        return tiffOrientation(file());
    }

    Bitmap readPicture(std::int64_t index, const DecodeOptions& options) override {
        file().select(page(index).directory);
        return readPage(file(), options);
    }

    Bitmap readThumbnail(std::int64_t index) override {
        file().select(page(index).directory);
        selectReducedVersion(page(index));
        return readPage(file(), {});
    }

    void selectReducedVersion(const TiffFile::Page& page) {
        if (page.reducedDirectory)
            return file().select(*page.reducedDirectory);
        std::uint16_t count = 0;
        std::uint64_t* offsets = nullptr;
        if (TIFFGetField(file().get(), TIFFTAG_SUBIFD, &count, &offsets) != 1)
            throw Failure{reason::noThumbnail};
        constexpr int maximumSubDirectories = 32;
        const std::vector<std::uint64_t> places(
            offsets, offsets + std::min<int>(count, maximumSubDirectories));
        for (const std::uint64_t place : places) {
            file().selectAt(place);
            const auto kind = file().fieldOrDefault<std::uint32_t>(TIFFTAG_SUBFILETYPE, 0);
            if ((kind & FILETYPE_REDUCEDIMAGE) != 0 && (kind & FILETYPE_MASK) == 0)
                return;
        }
        throw Failure{reason::noThumbnail};
    }

    std::optional<TiffFile> file_ = {};
};

} // namespace

extern "C" void zorvanMakeTiffReader(std::unique_ptr<ByteSource> source, FileFormat format,
                                     std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<TiffReader>(format, std::move(source));
}

} // namespace zorvan::imageio
