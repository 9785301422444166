#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/TiffFile.h>
#include <zorvan/platform/imageio/internal/TiffProperties.h>
#include <zorvan/platform/imageio/internal/TiffSamples.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan::imageio {
namespace {

/// A strip that decodes to more is read row by row.
constexpr std::int64_t largestWholeStrip = 4 << 20;
constexpr std::int64_t largestBand = std::int64_t{1} << 30;

/// The rows of samples that one strip, or one row of tiles, holds: a plane for each sample, or one.
class Band {
public:
    Band(const TiffFile& file, const TiffLayout& layout)
        : file_(file), layout_(layout), planeCount_(layout.planar ? layout.sampleCount : 1) {}

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

    void allocate(std::int64_t rowSize, std::int64_t rows) {
        if (rowSize <= 0 || rows <= 0 || rowSize > largestBand / rows / planeCount_)
            throw Failure{reason::tooLarge};
        rowSize_ = rowSize;
        rowCount_ = rows;
        planes_.resize(static_cast<std::size_t>(planeCount_));
        pointers_.resize(planes_.size());
        for (auto& plane : planes_)
            plane.assign(static_cast<std::size_t>(rowSize * rows), 0);
        if (layout_.tiled)
            tile_.resize(
                static_cast<std::size_t>(std::max<tmsize_t>(0, TIFFTileSize(file_.get()))));
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
    std::int64_t rowSize_ = 0;
    std::int64_t rowCount_ = 0;
    std::vector<std::vector<std::uint8_t>> planes_ = {};
    std::vector<const std::uint8_t*> pointers_ = {};
    std::vector<std::uint8_t> tile_ = {};
};

void readBands(const TiffFile& file, const TiffLayout& layout, Band& band, PictureSink& sink) {
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
    if (tileRowSize > largestBand / tilesAcross)
        throw Failure{reason::tooLarge};
    Band band(file, layout);
    band.allocate(tileRowSize * tilesAcross, tileHeight);
    readBands(file, layout, band, sink);
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
    if (rows < 1)
        throw Failure{reason::damaged};
    if (!layout.planar && rowSize > largestWholeStrip / rows)
        return readRowByRow(file, layout, sink);
    Band band(file, layout);
    band.allocate(rowSize, rows);
    readBands(file, layout, band, sink);
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

Bitmap readPage(const TiffFile& file, const DecodeOptions& options) {
    const TiffLayout layout = layoutOf(file);
    checkSize(layout.size);
    PictureSink sink(layout.size, wantedSize(layout.size, options));
    if (!layout.isPlain())
        readThroughLibrary(file, layout, sink);
    else if (layout.tiled)
        readTiled(file, layout, sink);
    else
        readStrips(file, layout, sink);
    return sink.take();
}

class TiffReader final : public FormatReader {
public:
    explicit TiffReader(std::unique_ptr<ByteSource> source)
        : FormatReader(FileFormat::tiff, std::move(source)) {}

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

    /// It follows its page in the chain of pages, or hangs below it.
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

extern "C" void zorvanMakeTiffReader(std::unique_ptr<ByteSource> source,
                                     std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<TiffReader>(std::move(source));
}

} // namespace zorvan::imageio
