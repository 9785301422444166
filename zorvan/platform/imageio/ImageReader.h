#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zorvan::imageio {

/// The kinds of picture file that can be read; the first four can be written too. SVG needs librsvg
/// on the machine, JPEG XL a build with libjxl, AVIF a libheif with a decoder for AV1.
enum class FileFormat { png, jpeg, tiff, heic, webp, avif, gif, bmp, svg, jpegXL };

/// The type identifier of a format, "public.png" and so on.
std::string_view typeIdentifier(FileFormat format) noexcept;

/// What a reader is asked for when it decodes.
struct DecodeOptions {
    /// When above 0: the picture is wanted no larger than this on its longer side, so a codec that
    /// can may decode at a reduced size. The result's longer side is exactly this value when the
    /// stored picture is larger, with the aspect ratio kept (the shorter side rounded, at least 1);
    /// a picture that is small enough comes at its own size.
    std::int64_t maximumPixelSize = 0;
};

/// Reads one picture file: finds out what it is from its bytes (never from its name), then gives
/// properties without decoding, and pixels on request. Not safe to share between threads.
class ImageReader {
public:
    /// Opens a file. Nothing is decoded; only the head of the file is read. Never null: a file that
    /// cannot be read or understood gives a reader whose `error()` says why.
    static std::unique_ptr<ImageReader> open(const std::string& path);
    /// The same over bytes in memory, which the reader takes over.
    static std::unique_ptr<ImageReader> open(Data bytes);

    virtual ~ImageReader() = default;

    /// Why the last operation gave nothing, as a short lower-case phrase for people ("not a
    /// picture", "the file is cut short"); empty when nothing has failed.
    virtual std::string error() const = 0;

    /// Absent when the bytes are no picture of a known kind.
    virtual std::optional<FileFormat> format() const noexcept = 0;

    /// How many pictures the file holds: pages of a TIFF, top-level pictures of a HEIC or AVIF; one
    /// of an animation, which is the first; 0 on error.
    virtual std::int64_t count() = 0;

    /// The properties of a picture, without decoding it. Absent when they cannot be read.
    virtual std::optional<PropertyList::Dictionary> properties(std::int64_t index) = 0;

    /// The EXIF value that `properties` states as "Orientation", without the rest of them; absent
    /// when the file says nothing, or cannot be read.
    virtual std::optional<int> orientation(std::int64_t index) = 0;

    /// The picture as RGBA pixels in its stored orientation, colour premultiplied.
    virtual std::optional<Bitmap> decode(std::int64_t index, const DecodeOptions& options) = 0;

    /// The small picture that the file carries beside the picture, in the same stored orientation;
    /// absent when there is none.
    virtual std::optional<Bitmap> embeddedThumbnail(std::int64_t index) = 0;
};

} // namespace zorvan::imageio
