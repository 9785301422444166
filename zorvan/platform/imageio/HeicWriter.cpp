#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/FrameWriter.h>
#include <zorvan/platform/imageio/internal/PixelRows.h>
#include <zorvan/platform/imageio/internal/StoredProperties.h>
#include <zorvan/platform/imageio/internal/loadedPictures.h>

#include <algorithm>
#include <memory>
#include <string_view>

#include <libheif/heif.h>

namespace zorvan::imageio {
namespace {

using Context = std::unique_ptr<heif_context, Release<heif_context_free>>;
using Encoder = std::unique_ptr<heif_encoder, Release<heif_encoder_release>>;
using Image = std::unique_ptr<heif_image, Release<heif_image_release>>;
using Handle = std::unique_ptr<heif_image_handle, Release<heif_image_handle_release>>;
using Options = std::unique_ptr<heif_encoding_options, Release<heif_encoding_options_free>>;

bool good(const heif_error& error) { return error.code == heif_error_Ok; }

Encoder encoderFor(heif_context* context, const Frame& frame) {
    heif_encoder* encoder = nullptr;
    if (!good(heif_context_get_encoder_for_format(context, heif_compression_HEVC, &encoder)))
        return nullptr;
    Encoder owner(encoder);
    constexpr int usualQuality = 60;
    heif_encoder_set_lossy_quality(encoder, percentOf(frame.quality, usualQuality));
    // Slower ones gain a few per cent of size for a multiple of the time.
    heif_encoder_set_parameter_string(encoder, "preset", "fast");
    heif_encoder_set_logging_level(encoder, 0);
    return owner;
}

Image imageOf(const Bitmap& bitmap, bool opaque) {
    heif_image* image = nullptr;
    const auto width = static_cast<int>(bitmap.width());
    const auto height = static_cast<int>(bitmap.height());
    const heif_chroma chroma = opaque ? heif_chroma_interleaved_RGB : heif_chroma_interleaved_RGBA;
    if (!good(heif_image_create(width, height, heif_colorspace_RGB, chroma, &image)))
        return nullptr;
    Image owner(image);
    if (!good(heif_image_add_plane(image, heif_channel_interleaved, width, height, 8)))
        return nullptr;
    int stride = 0;
    std::uint8_t* pixels = heif_image_get_plane(image, heif_channel_interleaved, &stride);
    for (std::int64_t y = 0; y < bitmap.height(); ++y) {
        if (opaque)
            dropAlpha(bitmap.row(y), pixels + y * stride, bitmap.width());
        else
            unpremultiply(bitmap.row(y), pixels + y * stride, bitmap.width());
    }
    return owner;
}

heif_error collect(heif_context*, const void* data, std::size_t size, void* user) {
    if (append(*static_cast<Data*>(user), data, size))
        return {heif_error_Ok, heif_suberror_Unspecified, ""};
    return {heif_error_Memory_allocation_error, heif_suberror_Unspecified, "no memory"};
}

/// The library states the size after a quarter turn where the format wants the size before it: the
/// two numbers change places wherever they do not fit the picture as it was coded, a little padded.
void mendStatedSizes(Data& bytes, const Bitmap& bitmap) {
    constexpr std::int64_t largestPadding = 64;
    const auto fits = [](std::int64_t coded, std::int64_t side) {
        return coded >= side && coded < side + largestPadding;
    };
    // The boxes that state sizes stand before the coded data.
    constexpr std::size_t searched = 4096;
    const std::string_view head = textOf(bytes).substr(0, searched);
    for (std::size_t at = head.find("ispe"); at != head.npos; at = head.find("ispe", at + 1)) {
        const std::size_t width = at + 8;
        if (width + 8 > bytes.size())
            return;
        const std::int64_t first = big32(bytes, width);
        const std::int64_t second = big32(bytes, width + 4);
        const bool right = fits(first, bitmap.width()) && fits(second, bitmap.height());
        if (!right && fits(second, bitmap.width()) && fits(first, bitmap.height()))
            std::swap_ranges(&bytes[width], &bytes[width + 4], &bytes[width + 4]);
    }
}

std::optional<Data> encoded(const Frame& frame) {
    constexpr std::int64_t maximumCodedSide = 16'384;
    const Bitmap& bitmap = *frame.bitmap;
    if (bitmap.width() > maximumCodedSide || bitmap.height() > maximumCodedSide)
        return std::nullopt;
    const Context context(heif_context_alloc());
    const Options options(heif_encoding_options_alloc());
    const bool opaque = isOpaque(bitmap);
    const Image image = imageOf(bitmap, opaque);
    if (!context || !options || !image)
        return std::nullopt;
    const Encoder encoder = encoderFor(context.get(), frame);
    if (!encoder)
        return std::nullopt;
    const StoredProperties properties = storedProperties(frame.properties);
    // A turn that readers obey stands in the format's own boxes; Exif only repeats it. But with
    // alpha the library does not read back as coded what it writes for a turn or mirror, so there
    // Exif stands alone.
    const int orientation = properties.orientation.value_or(1);
    options->image_orientation = static_cast<heif_orientation>(opaque ? orientation : 1);
    heif_image_handle* handle = nullptr;
    if (!good(heif_context_encode_image(context.get(), image.get(), encoder.get(), options.get(),
                                        &handle)))
        return std::nullopt;
    const Handle owner(handle);
    const Data exif = exifBlock(properties);
    if (!exif.empty() && !good(heif_context_add_exif_metadata(context.get(), handle, exif.data(),
                                                              static_cast<int>(exif.size()))))
        return std::nullopt;
    Data bytes;
    heif_writer writer = {1, collect};
    if (!good(heif_context_write(context.get(), &writer, &bytes)))
        return std::nullopt;
    if (opaque && orientation > 4)
        mendStatedSizes(bytes, bitmap);
    return bytes;
}

} // namespace

extern "C" void zorvanHasHeicEncoder(bool& has) {
    // The plug-ins are loaded with the first context.
    const Context context(heif_context_alloc());
    has = context && heif_have_encoder_for_format(heif_compression_HEVC);
}

extern "C" void zorvanEncodeHeic(const Frame& frame, std::optional<Data>& bytes) {
    bytes = encoded(frame);
}

} // namespace zorvan::imageio
