#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <array>
#include <vector>

#include <gif_lib.h>

namespace zorvan::imageio {
namespace {

/// giflib reading from a source of ours, up to the first picture.
class GifFile {
public:
    explicit GifFile(ByteSource& source) : source_(source) {
        int error = 0;
        gif_ = DGifOpen(this, read, &error);
        if (!gif_)
            throw Failure{failureOf(error)};
        try {
            findPicture();
        } catch (...) {
            DGifCloseFile(gif_, nullptr);
            throw;
        }
    }
    ~GifFile() { DGifCloseFile(gif_, nullptr); }
    GifFile(const GifFile&) = delete;
    GifFile& operator=(const GifFile&) = delete;

    PixelSize canvas() const {
        const PixelSize stated = {gif_->SWidth, gif_->SHeight};
        return stated.width > 0 && stated.height > 0 ? stated : size();
    }
    PixelSize size() const { return {gif_->Image.Width, gif_->Image.Height}; }
    std::int64_t left() const { return gif_->Image.Left; }
    std::int64_t top() const { return gif_->Image.Top; }
    bool isInterlaced() const { return gif_->Image.Interlace; }
    bool hasAlpha() const {
        return transparent_ >= 0 || left() > 0 || top() > 0 || size().width < canvas().width ||
               size().height < canvas().height;
    }

    /// How many pixels all of the file's bytes can stand for.
    std::int64_t mostPixels() const {
        constexpr std::uint64_t pixelsInByte = 4096; // a code of 12 bits is a text of at most that
        return static_cast<std::int64_t>(source_.size() * pixelsInByte);
    }

    /// The next row of colour numbers, in the order of the file.
    void readRow(std::uint8_t* out) {
        if (DGifGetLine(gif_, out, gif_->Image.Width) != GIF_OK)
            fail();
    }

    /// Every colour number as RGBA; one that stands for no colour is transparent.
    std::array<std::array<std::uint8_t, 4>, 256> palette() const {
        std::array<std::array<std::uint8_t, 4>, 256> result = {};
        const ColorMapObject* map = gif_->Image.ColorMap ? gif_->Image.ColorMap : gif_->SColorMap;
        for (int i = 0; map && i < std::min(map->ColorCount, 256); ++i) {
            const GifColorType& colour = map->Colors[i];
            if (i != transparent_)
                result[static_cast<std::size_t>(i)] = {colour.Red, colour.Green, colour.Blue, 255};
        }
        return result;
    }

private:
    static int read(GifFileType* gif, GifByteType* out, int count) {
        GifFile& file = *static_cast<GifFile*>(gif->UserData);
        const std::size_t got =
            file.source_.read(file.position_, out, static_cast<std::size_t>(count));
        file.position_ += got;
        file.reachedEnd_ = file.reachedEnd_ || got < static_cast<std::size_t>(count);
        return static_cast<int>(got);
    }

    const char* failureOf(int error) const {
        return error == D_GIF_ERR_NOT_ENOUGH_MEM ? reason::noMemory
               : reachedEnd_                     ? reason::cutShort
                                                 : reason::damaged;
    }
    [[noreturn]] void fail() const { throw Failure{failureOf(gif_->Error)}; }

    void findPicture() {
        for (;;) {
            GifRecordType kind = UNDEFINED_RECORD_TYPE;
            if (DGifGetRecordType(gif_, &kind) != GIF_OK)
                fail();
            if (kind == EXTENSION_RECORD_TYPE)
                readExtension();
            else if (kind != IMAGE_DESC_RECORD_TYPE)
                throw Failure{reason::damaged};
            else if (DGifGetImageDesc(gif_) != GIF_OK)
                fail();
            else
                return;
        }
    }

    /// Of the extensions only the one before a picture matters, which says what is transparent.
    void readExtension() {
        int code = 0;
        GifByteType* block = nullptr;
        if (DGifGetExtension(gif_, &code, &block) != GIF_OK)
            fail();
        while (block) {
            GraphicsControlBlock control = {};
            if (code == GRAPHICS_EXT_FUNC_CODE &&
                DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
                transparent_ = control.TransparentColor;
            if (DGifGetExtensionNext(gif_, &block) != GIF_OK)
                fail();
        }
    }

    ByteSource& source_;
    std::uint64_t position_ = 0;
    bool reachedEnd_ = false;
    GifFileType* gif_ = nullptr;
    int transparent_ = NO_TRANSPARENT_COLOR;
};

/// Rows of the picture from the top on, whatever the order in the file.
class Rows {
public:
    explicit Rows(GifFile& file)
        : file_(file), width_(static_cast<std::size_t>(file.size().width)) {
        all_.resize(file.isInterlaced() ? width_ * static_cast<std::size_t>(file.size().height)
                                        : width_);
        if (!file.isInterlaced())
            return;
        constexpr std::array<std::pair<std::int64_t, std::int64_t>, 4> passes = {
            {{0, 8}, {4, 8}, {2, 4}, {1, 2}}};
        for (const auto& [start, step] : passes)
            for (std::int64_t y = start; y < file.size().height; y += step)
                file.readRow(all_.data() + static_cast<std::size_t>(y) * width_);
    }

    const std::uint8_t* next() {
        if (file_.isInterlaced())
            return all_.data() + width_ * next_++;
        file_.readRow(all_.data());
        return all_.data();
    }

private:
    GifFile& file_;
    std::size_t width_;
    std::vector<std::uint8_t> all_;
    std::size_t next_ = 0;
};

Bitmap readOnCanvas(GifFile& file, const DecodeOptions& options) {
    const PixelSize canvas = file.canvas();
    checkSize(canvas);
    checkSize(file.size());
    if (file.size().width > file.mostPixels() / file.size().height)
        throw Failure{reason::cutShort};
    PictureSink sink(canvas, wantedSize(canvas, options));
    Rows rows(file);
    const auto palette = file.palette();
    const std::int64_t left = std::min(file.left(), canvas.width);
    const std::int64_t width = std::min(file.size().width, canvas.width - left);
    for (std::int64_t y = 0; y < canvas.height; ++y) {
        std::uint8_t* const row = sink.row();
        std::fill_n(row, canvas.width * 4, std::uint8_t{0});
        if (y >= file.top() && y < file.top() + file.size().height) {
            const std::uint8_t* const colours = rows.next();
            for (std::int64_t x = 0; x < width; ++x)
                std::copy_n(palette[colours[x]].data(), 4, row + (left + x) * 4);
        }
        sink.commit();
    }
    return sink.take();
}

class GifReader final : public FormatReader {
public:
    explicit GifReader(std::unique_ptr<ByteSource> source)
        : FormatReader(FileFormat::gif, std::move(source)) {}

private:
    std::int64_t readCount() override {
        if (!outline_) {
            const GifFile file(source());
            if (file.size().width < 1 || file.size().height < 1)
                throw Failure{reason::damaged};
            outline_ = Outline{.size = file.canvas(), .hasAlpha = file.hasAlpha()};
        }
        return 1;
    }

    PropertyList::Dictionary readProperties(std::int64_t) override {
        return propertiesOf(*outline_);
    }

    std::optional<int> readOrientation(std::int64_t) override { return std::nullopt; }

    Bitmap readPicture(std::int64_t, const DecodeOptions& options) override {
        GifFile file(source());
        return readOnCanvas(file, options);
    }

    Bitmap readThumbnail(std::int64_t) override { throw Failure{reason::noThumbnail}; }

    std::optional<Outline> outline_ = {};
};

} // namespace

extern "C" void zorvanMakeGifReader(std::unique_ptr<ByteSource> source,
                                    std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<GifReader>(std::move(source));
}

} // namespace zorvan::imageio
