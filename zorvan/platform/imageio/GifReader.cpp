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
        gif_.reset(DGifOpen(this, read, &error));
        if (!gif_)
            throw Failure{failureOf(error)};
        findPicture();
    }
    GifFile(const GifFile&) = delete;

    PixelSize canvas() const {
        const PixelSize stated = {gif_->SWidth, gif_->SHeight};
        return stated.width > 0 && stated.height > 0 ? stated : size();
    }
    PixelSize size() const { return {gif_->Image.Width, gif_->Image.Height}; }
    PixelRect place() const {
        return {gif_->Image.Left, gif_->Image.Top, gif_->Image.Width, gif_->Image.Height};
    }
    bool isInterlaced() const { return gif_->Image.Interlace; }
    bool hasAlpha() const {
        return transparent_ >= 0 || place().x > 0 || place().y > 0 ||
               size().width < canvas().width || size().height < canvas().height;
    }

    /// How many pixels all of the file's bytes can stand for.
    std::int64_t mostPixels() const {
        constexpr std::uint64_t pixelsInByte = 4096; // a code of 12 bits is a text of at most that
        return static_cast<std::int64_t>(source_.size() * pixelsInByte);
    }

    /// The next row of colour numbers, in the order of the file.
    void readRow(std::uint8_t* out) {
        if (DGifGetLine(gif_.get(), out, gif_->Image.Width) != GIF_OK)
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
    struct Close {
        void operator()(GifFileType* gif) const noexcept { DGifCloseFile(gif, nullptr); }
    };

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
            if (DGifGetRecordType(gif_.get(), &kind) != GIF_OK)
                fail();
            if (kind == EXTENSION_RECORD_TYPE)
                readExtension();
            else if (kind != IMAGE_DESC_RECORD_TYPE)
                throw Failure{reason::damaged};
            else if (DGifGetImageDesc(gif_.get()) != GIF_OK)
                fail();
            else
                return;
        }
    }

    /// Of the extensions only the one before a picture matters, which says what is transparent.
    void readExtension() {
        int code = 0;
        GifByteType* block = nullptr;
        if (DGifGetExtension(gif_.get(), &code, &block) != GIF_OK)
            fail();
        while (block) {
            GraphicsControlBlock control = {};
            if (code == GRAPHICS_EXT_FUNC_CODE &&
                DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
                transparent_ = control.TransparentColor;
            if (DGifGetExtensionNext(gif_.get(), &block) != GIF_OK)
                fail();
        }
    }

    ByteSource& source_;
    std::uint64_t position_ = 0;
    bool reachedEnd_ = false;
    std::unique_ptr<GifFileType, Close> gif_;
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
    checkSize(file.size());
    if (file.size().width > file.mostPixels() / file.size().height)
        throw Failure{reason::cutShort};
    checkProportion(canvas, file.mostPixels());
    PictureSink sink(canvas, wantedSize(canvas, options));
    Rows rows(file);
    const auto palette = file.palette();
    sink.putOnCanvas(canvas, file.place(), [&](std::uint8_t* out, std::int64_t count) {
        const std::uint8_t* const colours = rows.next();
        for (std::int64_t x = 0; x < count; ++x)
            std::copy_n(palette[colours[x]].data(), 4, out + x * 4);
    });
    return sink.take();
}

class GifReader final : public HeaderReader<Outline> {
public:
    using HeaderReader::HeaderReader;

private:
    Outline readHeader() override {
        const GifFile file(source());
        if (file.size().width < 1 || file.size().height < 1)
            throw Failure{reason::damaged};
        return {.size = file.canvas(), .hasAlpha = file.hasAlpha()};
    }

    PropertyList::Dictionary readProperties(std::int64_t) override {
        return propertiesOf(header());
    }

    Bitmap readPicture(std::int64_t, const DecodeOptions& options) override {
        GifFile file(source());
        return readOnCanvas(file, options);
    }
};

} // namespace

extern "C" void zorvanMakeGifReader(std::unique_ptr<ByteSource> source, FileFormat format,
                                    std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<GifReader>(format, std::move(source));
}

} // namespace zorvan::imageio
