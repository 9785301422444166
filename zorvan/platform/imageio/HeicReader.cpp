#include <zorvan/platform/dispatch/concurrentPerform.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/HeifBoxes.h>
#include <zorvan/platform/imageio/internal/HeifDecoding.h>
#include <zorvan/platform/imageio/internal/HeifTiles.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace zorvan::imageio {
namespace {

/// The tiles from one column to before another, decoded by all processors.
class TileRow {
public:
    TileRow(const HeifTiles& tiles, const Coding& coding, std::int64_t row, std::int64_t first,
            std::int64_t end)
        : tiles_(tiles), coding_(coding), row_(row), first_(first),
          bitmaps_(static_cast<std::size_t>(end - first)) {
        concurrentPerform(end - first, [this](std::int64_t i) { decodeTile(first_ + i); });
    }

    /// Copies what the tiles have of a row of theirs from `x` on, a column of the whole picture.
    void copyRow(std::int64_t y, std::int64_t x, std::int64_t width, std::uint8_t* out) const {
        for (std::int64_t end = x + width; x < end;) {
            const std::int64_t column = x / coding_.size.width;
            const std::int64_t start = x % coding_.size.width;
            const std::int64_t count = std::min(coding_.size.width - start, end - x);
            const Bitmap& tile = *bitmaps_[static_cast<std::size_t>(column - first_)];
            out = std::copy_n(tile.row(y) + start * 4, count * 4, out);
            x += count;
        }
    }

private:
    void decodeTile(std::int64_t column) {
        PictureSink sink(coding_.size, coding_.size);
        decodePart(fileOf(column), coding_, {0, 0, coding_.size.width, coding_.size.height}, sink);
        bitmaps_[static_cast<std::size_t>(column - first_)] = sink.take();
    }

    /// The bytes of a picture are for one thread at a time.
    Data fileOf(std::int64_t column) {
        const std::lock_guard lock(reading_);
        return tiles_.file(column, row_);
    }

    const HeifTiles& tiles_;
    const Coding coding_;
    const std::int64_t row_, first_;
    std::mutex reading_ = {};
    std::vector<std::optional<Bitmap>> bitmaps_;
};

void decodeRows(const HeifTiles& tiles, const Coding& coding, const PixelRect& part,
                PictureSink& sink) {
    const auto [width, height] = coding.size;
    const std::int64_t end = (part.x + part.width + width - 1) / width;
    for (std::int64_t y = part.y; y < part.y + part.height;) {
        const TileRow row(tiles, coding, y / height, part.x / width, end);
        const std::int64_t last = std::min((y / height + 1) * height, part.y + part.height);
        for (; y < last; ++y) {
            row.copyRow(y % height, part.x, part.width, sink.row());
            sink.commit();
        }
    }
}

/// HEIC and AVIF, which differ in the codec only.
class HeifReader final : public FormatReader {
public:
    using FormatReader::FormatReader;

private:
    const HeifMeta& meta() {
        if (!meta_)
            meta_.emplace(source());
        return *meta_;
    }

    const HeifFile& file() {
        if (!file_)
            file_ = heifFileOf(meta(), source().size());
        return *file_;
    }

    const HeifPicture& picture(std::int64_t index) {
        return file().pictures[static_cast<std::size_t>(index)];
    }

    std::int64_t readCount() override { return static_cast<std::int64_t>(file().pictures.size()); }

    Data exifOf(const HeifPicture& picture) {
        if (!picture.exif || picture.exif->length > maximumMetadataSize)
            return {};
        const Data item = source().bytes(picture.exif->offset, picture.exif->length);
        const Bytes block = exifInBox(item);
        return Data(block.begin(), block.end());
    }

    /// The file's own turns are binding and Exif's orientation then repeats them; without any of
    /// them Exif's orientation holds.
    static std::optional<int> orientationOf(const HeifPicture& shown, Bytes exif) {
        return shown.orientation ? shown.orientation : exifOrientation(exif);
    }

    std::optional<int> readOrientation(std::int64_t index) override {
        return orientationOf(picture(index), exifOf(picture(index)));
    }

    PropertyList::Dictionary readProperties(std::int64_t index) override {
        const HeifPicture& shown = picture(index);
        const Data exif = exifOf(shown);
        return propertiesOf({.size = {shown.crop.width, shown.crop.height},
                             .depth = shown.depth,
                             .colorModel = shown.monochrome ? "Gray" : "RGB",
                             .hasAlpha = shown.hasAlpha,
                             .orientation = orientationOf(shown, exif)},
                            exif);
    }

    void refuseCutFile() {
        if (!file().isComplete)
            throw Failure{reason::cutShort};
    }

    Bitmap readPicture(std::int64_t index, const DecodeOptions& options) override {
        const HeifPicture& shown = picture(index);
        refuseCutFile();
        const HeifTiles tiles(meta(), source(), shown.item);
        if (tiles.size() != shown.coded)
            throw Failure{reason::damaged};
        return decodeTiles(tiles, shown.chroma, shown.crop, options);
    }

    Bitmap decodeTiles(const HeifTiles& tiles, std::optional<int> chroma, const PixelRect& part,
                       const DecodeOptions& options) {
        checkProportion(tiles.size(), usualPixels(source().size()));
        const PixelSize shown = {part.width, part.height};
        PictureSink sink(shown, wantedSize(shown, options));
        const Coding coding = {tiles.tileSize(), chroma};
        if (tiles.isOne())
            decodePart(tiles.file(0, 0), coding, part, sink);
        else
            decodeRows(tiles, coding, part, sink);
        return sink.take();
    }

    Bitmap readThumbnail(std::int64_t index) override {
        const HeifPicture& shown = picture(index);
        if (!shown.thumbnail)
            throw Failure{reason::noThumbnail};
        refuseCutFile();
        const HeifTiles tiles(meta(), source(), *shown.thumbnail);
        return decodeTiles(tiles, heifPictureOf(meta(), *shown.thumbnail).chroma,
                           {0, 0, tiles.size().width, tiles.size().height}, {});
    }

    std::optional<HeifMeta> meta_ = {};
    std::optional<HeifFile> file_ = {};
};

} // namespace

extern "C" void zorvanMakeHeifReader(std::unique_ptr<ByteSource> source, FileFormat format,
                                     std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<HeifReader>(format, std::move(source));
}

} // namespace zorvan::imageio
