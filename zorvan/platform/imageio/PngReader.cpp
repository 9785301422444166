#include <zorvan/platform/imageio/internal/CLibraryCall.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/PixelRows.h>
#include <zorvan/platform/imageio/internal/PngHeader.h>

#include <png.h>

namespace zorvan::imageio {
namespace {

bool hasAlpha(const PngHeader& header) {
    return (header.colorType & PNG_COLOR_MASK_ALPHA) != 0 || header.hasTransparentColour;
}

PropertyList::Dictionary propertiesOf(const PngHeader& header) {
    const Outline outline = {.size = header.size,
                             .depth = header.depth,
                             .colorModel =
                                 (header.colorType & PNG_COLOR_MASK_COLOR) ? "RGB" : "Gray",
                             .hasAlpha = hasAlpha(header),
                             .orientation = exifOrientation(header.exif),
                             .dpi = header.dpi};
    return propertiesOf(outline, header.exif, {{"{PNG}", header.entries}});
}

/// libpng reading from a source of ours, with its reports kept to this call.
class Decoder {
public:
    explicit Decoder(ByteSource& source) : source_(source) {
        structs_.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, fail,
                                              [](png_structp, png_const_charp) {});
        structs_.info = png() ? png_create_info_struct(png()) : nullptr;
        if (!info())
            throw Failure{reason::noMemory};
        run([&] {
            png_set_read_fn(png(), this, read);
            png_set_user_limits(png(), maximumSide, maximumSide);
            // The metadata is read elsewhere; here it would only cost memory.
            png_set_keep_unknown_chunks(png(), PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
            png_read_info(png(), info());
        });
    }
    Decoder(const Decoder&) = delete;

    png_structp png() noexcept { return structs_.png; }
    png_infop info() noexcept { return structs_.info; }

    template <class Work>
    void run(const Work& work) {
        if (!finishes(failure_, work))
            throw Failure{reachedEnd_ ? reason::cutShort : reason::damaged};
    }

private:
    // Apart, so that they are freed when the reading of the head fails.
    struct Structs {
        png_structp png = nullptr;
        png_infop info = nullptr;
        ~Structs() { png_destroy_read_struct(&png, &info, nullptr); }
    };

    static void fail(png_structp png, png_const_charp) {
        std::longjmp(static_cast<Decoder*>(png_get_error_ptr(png))->failure_, 1);
    }

    static void read(png_structp png, png_bytep out, std::size_t count) {
        Decoder& decoder = *static_cast<Decoder*>(png_get_io_ptr(png));
        if (decoder.source_.read(decoder.position_, out, count) != count) {
            decoder.reachedEnd_ = true;
            png_error(png, "end of file");
        }
        decoder.position_ += count;
    }

    ByteSource& source_;
    std::uint64_t position_ = 0;
    bool reachedEnd_ = false;
    std::jmp_buf failure_;
    Structs structs_;
};

/// Sets up the conversion of every kind of PNG to RGBA with 8 bits. Whether it has alpha.
bool setRgbaOutput(png_structp png, png_infop info) {
    const bool alpha = (png_get_color_type(png, info) & PNG_COLOR_MASK_ALPHA) != 0 ||
                       png_get_valid(png, info, PNG_INFO_tRNS) != 0;
    png_set_expand(png);
    png_set_scale_16(png);
    png_set_gray_to_rgb(png);
    png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
    return alpha;
}

class PngReader final : public HeaderReader<PngHeader> {
public:
    using HeaderReader::HeaderReader;

private:
    PngHeader readHeader() override { return readPngHeader(source()); }

    Bytes exif() override { return header().exif; }

    PropertyList::Dictionary readProperties(std::int64_t) override {
        return propertiesOf(header());
    }

    Bitmap readPicture(std::int64_t, const DecodeOptions& options) override {
        checkSize(header().size);
        Decoder decoder(source());
        const png_structp png = decoder.png();
        const PixelSize size = {png_get_image_width(png, decoder.info()),
                                png_get_image_height(png, decoder.info())};
        checkSize(size);
        bool alpha = false;
        int passes = 1;
        decoder.run([&] {
            alpha = setRgbaOutput(png, decoder.info());
            passes = png_set_interlace_handling(png);
            png_start_read_image(png);
        });
        // The passes fill in each other's gaps, so the picture has to be whole in memory.
        if (passes > 1)
            checkProportion(size, usualPixels(source().size()));
        PictureSink sink(size, wantedSize(size, options));
        if (passes == 1)
            readRows(decoder, sink, size, alpha);
        else
            readInterlaced(decoder, sink, size, passes, alpha);
        return sink.take();
    }

    static void readRows(Decoder& decoder, PictureSink& sink, PixelSize size, bool alpha) {
        decoder.run([&] {
            for (std::int64_t y = 0; y < size.height; ++y) {
                png_read_row(decoder.png(), sink.row(), nullptr);
                if (alpha)
                    premultiply(sink.row(), size.width);
                sink.commit();
            }
            png_read_end(decoder.png(), nullptr);
        });
    }

    static void readInterlaced(Decoder& decoder, PictureSink& sink, PixelSize size, int passes,
                               bool alpha) {
        Bitmap whole = bitmapOf(size);
        decoder.run([&] {
            for (int pass = 0; pass < passes; ++pass)
                for (std::int64_t y = 0; y < size.height; ++y)
                    png_read_row(decoder.png(), whole.row(y), nullptr);
            png_read_end(decoder.png(), nullptr);
        });
        if (alpha)
            premultiply(whole.data(), size.width * size.height);
        sink.put(whole);
    }
};

} // namespace

void makePngReader(std::unique_ptr<ByteSource> source, FileFormat format,
                   std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<PngReader>(format, std::move(source));
}

} // namespace zorvan::imageio
