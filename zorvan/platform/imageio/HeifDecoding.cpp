#include <zorvan/platform/imageio/internal/HeifDecoding.h>

#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/PixelRows.h>
#include <zorvan/platform/imageio/internal/YCbCr.h>

#include <array>
#include <cstring>
#include <memory>
#include <vector>

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

/// The only picture of a file, which must outlive it.
class OpenedPicture {
public:
    explicit OpenedPicture(const Data& file) : context_(heif_context_alloc()) {
        if (!context_)
            throw Failure{reason::noMemory};
        check(heif_context_read_from_memory_without_copy(context_.get(), file.data(), file.size(),
                                                         nullptr));
        heif_image_handle* handle = nullptr;
        check(heif_context_get_primary_image_handle(context_.get(), &handle));
        handle_.reset(handle);
    }

    const heif_image_handle* handle() const { return handle_.get(); }
    bool isPremultiplied() const { return heif_image_handle_is_premultiplied_alpha(handle()) != 0; }

private:
    std::unique_ptr<heif_context, Release<heif_context_free>> context_;
    Handle handle_ = {};
};

Image decoded(const OpenedPicture& picture, heif_colorspace space, heif_chroma chroma) {
    const Options options(heif_decoding_options_alloc());
    if (!options)
        throw Failure{reason::noMemory};
    options->ignore_transformations = 1;
    options->convert_hdr_to_8bit = chroma == heif_chroma_interleaved_RGBA;
    heif_image* image = nullptr;
    check(heif_decode_image(picture.handle(), &image, space, chroma, options.get()));
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

/// Takes the planes as the codec leaves them and turns them into pixels row by row, which spares
/// two copies of the whole picture. False when they are of a kind that only the library knows.
bool convertAsCoded(const OpenedPicture& picture, PixelSize coded, int chroma,
                    const PixelRect& crop, PictureSink& sink) {
    constexpr std::array<heif_chroma, 4> kinds = {heif_chroma_monochrome, heif_chroma_420,
                                                  heif_chroma_422, heif_chroma_444};
    const Image image =
        decoded(picture, chroma == 0 ? heif_colorspace_monochrome : heif_colorspace_YCbCr,
                kinds[static_cast<std::size_t>(chroma)]);
    const std::optional<YCbCrMatrix> matrix = matrixOf(image.get());
    const Planes planes(image.get());
    if (!matrix || !planes.fit(coded))
        return false;
    convertPlanes(planes, *matrix, crop, picture.isPremultiplied(), sink);
    return true;
}

} // namespace

void decodePart(const Data& file, const Coding& coding, const PixelRect& part, PictureSink& sink) {
    const OpenedPicture picture(file);
    if (coding.chroma && convertAsCoded(picture, coding.size, *coding.chroma, part, sink))
        return;
    const Image image = decoded(picture, heif_colorspace_RGB, heif_chroma_interleaved_RGBA);
    copyInterleaved(image.get(), part, picture.isPremultiplied(), sink);
}

} // namespace zorvan::imageio
