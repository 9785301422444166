#include <zorvan/platform/imageio/internal/CLibraryCall.h>
#include <zorvan/platform/imageio/internal/FrameWriter.h>
#include <zorvan/platform/imageio/internal/PixelRows.h>
#include <zorvan/platform/imageio/internal/StoredProperties.h>

#include <cmath>
#include <new>
#include <vector>

#include <png.h>

namespace zorvan::imageio {
namespace {

class Encoder {
public:
    Encoder() {
        png_ = png_create_write_struct(
            PNG_LIBPNG_VER_STRING, this,
            [](png_structp png, png_const_charp) {
                std::longjmp(static_cast<Encoder*>(png_get_error_ptr(png))->failure, 1);
            },
            [](png_structp, png_const_charp) {});
        info_ = png_ ? png_create_info_struct(png_) : nullptr;
        if (!info_) {
            png_destroy_write_struct(&png_, nullptr);
            throw std::bad_alloc();
        }
    }
    ~Encoder() { png_destroy_write_struct(&png_, &info_); }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    void start(const Bitmap& bitmap, bool opaque, const StoredProperties& properties, Data& exif) {
        constexpr double inchesPerMetre = 1 / 0.0254;
        png_set_write_fn(png_, this, collect, [](png_structp) {});
        png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        png_set_IHDR(png_, info_, static_cast<png_uint_32>(bitmap.width()),
                     static_cast<png_uint_32>(bitmap.height()), 8,
                     opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (properties.dpi)
            png_set_pHYs(png_, info_,
                         static_cast<png_uint_32>(std::lround(properties.dpi->x * inchesPerMetre)),
                         static_cast<png_uint_32>(std::lround(properties.dpi->y * inchesPerMetre)),
                         PNG_RESOLUTION_METER);
        if (!exif.empty())
            png_set_eXIf_1(png_, info_, static_cast<png_uint_32>(exif.size()),
                           reinterpret_cast<png_bytep>(exif.data()));
        png_write_info(png_, info_);
    }

    void write(const std::uint8_t* row) { png_write_row(png_, row); }
    void finish() { png_write_end(png_, nullptr); }
    Data take() { return std::move(bytes_); }

    std::jmp_buf failure;

private:
    static void collect(png_structp png, png_bytep data, std::size_t size) {
        if (!append(static_cast<Encoder*>(png_get_io_ptr(png))->bytes_, data, size))
            png_error(png, "no memory");
    }

    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    Data bytes_ = {};
};

} // namespace

std::optional<Data> encodePng(const Frame& frame) {
    const Bitmap& bitmap = *frame.bitmap;
    const StoredProperties properties = storedProperties(frame.properties);
    Data exif = exifBlock(properties);
    const bool opaque = isOpaque(bitmap);
    std::vector<std::uint8_t> out(static_cast<std::size_t>(bitmap.bytesPerRow()));
    Encoder encoder;
    const bool done = finishes(encoder.failure, [&] {
        encoder.start(bitmap, opaque, properties, exif);
        for (std::int64_t y = 0; y < bitmap.height(); ++y) {
            if (opaque)
                dropAlpha(bitmap.row(y), out.data(), bitmap.width());
            else
                unpremultiply(bitmap.row(y), out.data(), bitmap.width());
            encoder.write(out.data());
        }
        encoder.finish();
    });
    return done ? std::optional(encoder.take()) : std::nullopt;
}

} // namespace zorvan::imageio
