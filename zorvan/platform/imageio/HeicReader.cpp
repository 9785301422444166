#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/HeifBoxes.h>
#include <zorvan/platform/imageio/internal/HeifTransforms.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/PixelRows.h>
#include <zorvan/platform/imageio/internal/YCbCr.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include <libheif/heif.h>

namespace zorvan::imageio {
namespace {

using Handle = std::unique_ptr<heif_image_handle, Release<heif_image_handle_release>>;
using Image = std::unique_ptr<heif_image, Release<heif_image_release>>;
using Options = std::unique_ptr<heif_decoding_options, Release<heif_decoding_options_free>>;

void check(const heif_error& error) {
    switch (error.code) {
    case heif_error_Ok:
        return;
    case heif_error_Memory_allocation_error:
        throw Failure{error.subcode == heif_suberror_Security_limit_exceeded ? reason::tooLarge
                                                                             : reason::noMemory};
    case heif_error_Unsupported_feature:
    case heif_error_Unsupported_filetype:
        throw Failure{error.subcode == heif_suberror_Unsupported_codec ? reason::noDecoder
                                                                       : reason::unsupported};
    case heif_error_Plugin_loading_error:
        throw Failure{reason::noDecoder};
    default:
        throw Failure{reason::damaged};
    }
}

/// libheif reading from a source of ours. It refuses pictures whose size is not the one stated, so
/// a size that is stated with its sides exchanged is read as it should be.
class Context {
public:
    Context(ByteSource& source, const HeifPicture& picture)
        : source_(source), turnedSizeAt_(picture.turnedSizeAt), context_(heif_context_alloc()) {
        if (!context_)
            throw Failure{reason::noMemory};
        reader_.reader_api_version = 1;
        reader_.get_position = position;
        reader_.read = read;
        reader_.seek = seek;
        reader_.wait_for_file_size = wait;
        check(heif_context_read_from_reader(context_.get(), &reader_, this, nullptr));
    }

    Handle handle(std::uint32_t item) {
        heif_image_handle* handle = nullptr;
        check(heif_context_get_image_handle(context_.get(), item, &handle));
        return Handle(handle);
    }

private:
    static Context& of(void* user) { return *static_cast<Context*>(user); }
    static std::int64_t position(void* user) {
        return static_cast<std::int64_t>(of(user).position_);
    }
    static int read(void* out, std::size_t size, void* user) {
        Context& context = of(user);
        const std::size_t count = context.source_.read(context.position_, out, size);
        context.mendSize(static_cast<std::byte*>(out), count);
        context.position_ += count;
        return count == size ? 0 : 1;
    }
    static int seek(std::int64_t position, void* user) {
        of(user).position_ = static_cast<std::uint64_t>(position);
        return 0;
    }
    static heif_reader_grow_status wait(std::int64_t size, void* user) {
        const bool there = size <= static_cast<std::int64_t>(of(user).source_.size());
        return there ? heif_reader_grow_status_size_reached
                     : heif_reader_grow_status_size_beyond_eof;
    }

    /// Exchanges the sides, as far as they are among the bytes at the position.
    void mendSize(std::byte* bytes, std::size_t count) {
        constexpr std::size_t sideLength = 4;
        std::array<std::byte, 2 * sideLength> sides = {};
        if (!turnedSizeAt_ ||
            source_.read(*turnedSizeAt_, sides.data(), sides.size()) < sides.size())
            return;
        std::rotate(sides.begin(), sides.begin() + sideLength, sides.end());
        for (std::size_t i = 0; i < sides.size(); ++i) {
            const std::uint64_t place = *turnedSizeAt_ + i;
            if (place >= position_ && place - position_ < count)
                bytes[place - position_] = sides[i];
        }
    }

    ByteSource& source_;
    const std::optional<std::uint64_t> turnedSizeAt_;
    std::uint64_t position_ = 0;
    heif_reader reader_ = {};
    std::unique_ptr<heif_context, Release<heif_context_free>> context_;
};

Image decoded(const heif_image_handle* handle, heif_colorspace space, heif_chroma chroma) {
    const Options options(heif_decoding_options_alloc());
    if (!options)
        throw Failure{reason::noMemory};
    options->ignore_transformations = 1;
    options->convert_hdr_to_8bit = chroma == heif_chroma_interleaved_RGBA;
    heif_image* image = nullptr;
    check(heif_decode_image(handle, &image, space, chroma, options.get()));
    return Image(image);
}

/// How the picture's colours are coded; absent when only the library knows how to turn them into
/// RGB.
std::optional<YCbCrMatrix> matrixOf(const heif_image* image) {
    heif_color_profile_nclx* profile = nullptr;
    const heif_error error = heif_image_get_nclx_color_profile(image, &profile);
    if (error.code != heif_error_Ok || !profile)
        return YCbCrMatrix();
    const std::unique_ptr<heif_color_profile_nclx, Release<heif_nclx_color_profile_free>> owner(
        profile);
    const bool fullRange = profile->full_range_flag != 0;
    switch (profile->matrix_coefficients) {
    case heif_matrix_coefficients_ITU_R_BT_709_5:
        return YCbCrMatrix{0.2126, 0.0722, fullRange};
    case heif_matrix_coefficients_unspecified:
    case heif_matrix_coefficients_ITU_R_BT_470_6_System_B_G:
    case heif_matrix_coefficients_ITU_R_BT_601_6:
        return YCbCrMatrix{0.299, 0.114, fullRange};
    case heif_matrix_coefficients_ITU_R_BT_2020_2_non_constant_luminance:
        return YCbCrMatrix{0.2627, 0.0593, fullRange};
    default:
        return std::nullopt;
    }
}

/// A plane of a decoded picture.
class Plane {
public:
    Plane(const heif_image* image, heif_channel channel) {
        if (!heif_image_has_channel(image, channel))
            return;
        width_ = heif_image_get_width(image, channel);
        height_ = heif_image_get_height(image, channel);
        bits_ = heif_image_get_bits_per_pixel_range(image, channel);
        data_ = heif_image_get_plane_readonly(image, channel, &stride_);
    }

    bool exists() const { return data_ != nullptr; }
    int bits() const { return bits_; }
    bool hasSize(std::int64_t width, std::int64_t height) const {
        return width_ == width && height_ == height;
    }
    /// From pixel `x` of row `y` on.
    const std::uint8_t* at(std::int64_t x, std::int64_t y) const {
        return data_ + y * stride_ + x * (bits_ > 8 ? 2 : 1);
    }

private:
    const std::uint8_t* data_ = nullptr;
    std::int64_t width_ = 0;
    std::int64_t height_ = 0;
    int stride_ = 0;
    int bits_ = 8;
};

/// The planes of a picture in brightness and colour difference.
struct Planes {
    Plane y;
    Plane cb;
    Plane cr;
    Plane alpha;
    bool halfWidth = false;
    bool halfHeight = false;

    explicit Planes(const heif_image* image)
        : y(image, heif_channel_Y), cb(image, heif_channel_Cb), cr(image, heif_channel_Cr),
          alpha(image, heif_channel_Alpha) {
        const heif_chroma chroma = heif_image_get_chroma_format(image);
        halfWidth = chroma == heif_chroma_420 || chroma == heif_chroma_422;
        halfHeight = chroma == heif_chroma_420;
    }

    /// Whether the planes fit together and are of a kind that the converter takes.
    bool fit(PixelSize size) const {
        constexpr int maximumBits = 16;
        const std::int64_t width = halfWidth ? (size.width + 1) / 2 : size.width;
        const std::int64_t height = halfHeight ? (size.height + 1) / 2 : size.height;
        const auto isColour = [&](const Plane& plane) {
            return plane.exists() && plane.hasSize(width, height) && plane.bits() == y.bits();
        };
        const auto isWhole = [&](const Plane& plane) {
            return plane.exists() && plane.hasSize(size.width, size.height) && plane.bits() >= 8 &&
                   plane.bits() <= maximumBits;
        };
        const bool grey = !cb.exists() && !cr.exists();
        return isWhole(y) && (grey || (isColour(cb) && isColour(cr))) &&
               (!alpha.exists() || isWhole(alpha));
    }
};

void convertPlanes(const Planes& planes, const YCbCrMatrix& matrix, const PixelRect& crop,
                   bool premultiplied, PictureSink& sink) {
    // The converter takes colour samples by pairs of pixels, so the crop's odd pixel goes along.
    const std::int64_t extra = planes.halfWidth ? crop.x % 2 : 0;
    const std::int64_t left = crop.x - extra;
    YCbCrConverter converter(matrix, {.width = crop.width + extra,
                                      .bits = planes.y.bits(),
                                      .alphaBits = planes.alpha.bits(),
                                      .halfWidth = planes.halfWidth});
    std::vector<std::uint8_t> wider(extra > 0 ? static_cast<std::size_t>(crop.width + extra) * 4
                                              : 0);
    for (std::int64_t y = crop.y; y < crop.y + crop.height; ++y) {
        const std::int64_t colourY = planes.halfHeight ? y / 2 : y;
        const std::int64_t colourX = planes.halfWidth ? left / 2 : left;
        YCbCrRow row = {.y = planes.y.at(left, y)};
        if (planes.cb.exists()) {
            row.cb = planes.cb.at(colourX, colourY);
            row.cr = planes.cr.at(colourX, colourY);
        }
        if (planes.alpha.exists())
            row.alpha = planes.alpha.at(left, y);
        std::uint8_t* out = sink.row();
        converter.convert(row, extra > 0 ? wider.data() : out);
        if (extra > 0)
            std::memcpy(out, wider.data() + 4, static_cast<std::size_t>(crop.width) * 4);
        if (row.alpha)
            finishAlpha(out, crop.width, premultiplied);
        sink.commit();
    }
}

void copyInterleaved(const heif_image* image, const PixelRect& crop, bool premultiplied,
                     PictureSink& sink) {
    int stride = 0;
    const std::uint8_t* pixels =
        heif_image_get_plane_readonly(image, heif_channel_interleaved, &stride);
    if (!pixels || heif_image_get_width(image, heif_channel_interleaved) < crop.x + crop.width ||
        heif_image_get_height(image, heif_channel_interleaved) < crop.y + crop.height)
        throw Failure{reason::damaged};
    for (std::int64_t y = crop.y; y < crop.y + crop.height; ++y) {
        std::memcpy(sink.row(), pixels + y * stride + crop.x * 4,
                    static_cast<std::size_t>(crop.width) * 4);
        finishAlpha(sink.row(), crop.width, premultiplied);
        sink.commit();
    }
}

bool isPremultiplied(const heif_image_handle* handle) {
    return heif_image_handle_is_premultiplied_alpha(handle) != 0;
}

/// Takes the planes as the codec leaves them and turns them into pixels row by row, which spares
/// two copies of the whole picture. False when they are of a kind that only the library knows.
bool convertAsCoded(const heif_image_handle* handle, PixelSize coded, int chroma,
                    const PixelRect& crop, PictureSink& sink) {
    constexpr std::array<heif_chroma, 4> kinds = {heif_chroma_monochrome, heif_chroma_420,
                                                  heif_chroma_422, heif_chroma_444};
    const Image image =
        decoded(handle, chroma == 0 ? heif_colorspace_monochrome : heif_colorspace_YCbCr,
                kinds[static_cast<std::size_t>(chroma)]);
    const std::optional<YCbCrMatrix> matrix = matrixOf(image.get());
    const Planes planes(image.get());
    if (!matrix || !planes.fit(coded))
        return false;
    convertPlanes(planes, *matrix, crop, isPremultiplied(handle), sink);
    return true;
}

/// HEIC and AVIF, which differ in the codec only.
class HeifReader final : public FormatReader {
public:
    using FormatReader::FormatReader;

private:
    const HeifFile& file() {
        if (!file_)
            file_ = readHeifBoxes(source());
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
        checkSize(shown.coded);
        Context context(source(), shown);
        return decode(context.handle(shown.item).get(), shown.coded, shown.chroma, shown.crop,
                      options);
    }

    static Bitmap decode(const heif_image_handle* handle, PixelSize coded,
                         std::optional<int> chroma, PixelRect crop, const DecodeOptions& options) {
        checkSize(coded);
        const PixelSize shown = {crop.width, crop.height};
        PictureSink sink(shown, wantedSize(shown, options));
        if (chroma && convertAsCoded(handle, coded, *chroma, crop, sink))
            return sink.take();
        const Image image = decoded(handle, heif_colorspace_RGB, heif_chroma_interleaved_RGBA);
        copyInterleaved(image.get(), crop, isPremultiplied(handle), sink);
        return sink.take();
    }

    Bitmap readThumbnail(std::int64_t index) override {
        const HeifPicture& shown = picture(index);
        if (!shown.thumbnail)
            throw Failure{reason::noThumbnail};
        refuseCutFile();
        Context context(source(), shown);
        const Handle picture = context.handle(shown.item);
        heif_image_handle* thumbnail = nullptr;
        check(heif_image_handle_get_thumbnail(picture.get(), *shown.thumbnail, &thumbnail));
        const Handle owner(thumbnail);
        const PixelSize size = {heif_image_handle_get_ispe_width(thumbnail),
                                heif_image_handle_get_ispe_height(thumbnail)};
        return decode(thumbnail, size, shown.chroma, {0, 0, size.width, size.height}, {});
    }

    std::optional<HeifFile> file_ = {};
};

} // namespace

extern "C" void zorvanMakeHeifReader(std::unique_ptr<ByteSource> source, FileFormat format,
                                     std::unique_ptr<ImageReader>& reader) {
    reader = std::make_unique<HeifReader>(format, std::move(source));
}

} // namespace zorvan::imageio
