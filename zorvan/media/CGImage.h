#pragma once

#include <zorvan/media/AVCaptureVideoOrientation.h>
#include <zorvan/media/ImageExportFormat.h>
#include <zorvan/media/Location.h>
#include <zorvan/media/byteOffset.h>
#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/Required.h>
#include <zorvan/platform/foundation/URL.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace zorvan {

class CGContext;
class NSImage;

/// A picture, which never changes and may be shared between threads: 8 bits a component, 4 bytes a
/// pixel, rows of `width * 4` bytes with the top row first, alpha premultiplied.
///
/// Held by `std::shared_ptr<const CGImage>`; an operation that gives no picture gives an empty one.
///
/// Redrawing makes a new picture in a bitmap with alpha last, unless it says otherwise. When the
/// bitmap cannot be made (a side that rounds below 1 or to no number, too many pixels, no memory)
/// it prints "CGContext.createRGBBitmapContex cannot create context" on standard output and gives
/// nothing; a width whose byte count leaves the signed 64-bit range stops the program.
class CGImage : public std::enable_shared_from_this<CGImage> {
public:
    using Pointer = std::shared_ptr<const CGImage>; ///< How a picture is held; may be empty.

    /// Takes the pixels of the bitmap.
    static Pointer create(Bitmap bitmap);
    /// Shares the pixels, which must not change any more.
    static Pointer create(std::shared_ptr<const Bitmap> bitmap);

    /// The application image of that name (`NSImage::named`) as a bitmap of its size; empty when
    /// there is none.
    [[nodiscard]] static Pointer named(std::string_view name);
    /// An application image that shows this picture at its size in pixels.
    [[nodiscard]] std::shared_ptr<NSImage> nsImage() const;

    // Loading. A file is known by its bytes, whatever its name. Empty when it cannot be read.

    /// The first picture of a file, at its stored size and in its stored orientation.
    /// @{
    [[nodiscard]] static Pointer image(const URL& url);
    [[nodiscard]] static Pointer image(Data data);
    /// @}
    /// A small form of the first picture; options as at `CGImageSource::thumbnail`.
    /// @{
    [[nodiscard]] static Pointer thumbnail(const URL& url,
                                           const PropertyList::Dictionary& options = {});
    [[nodiscard]] static Pointer thumbnail(Data data, const PropertyList::Dictionary& options = {});
    /// @}

    /// The properties of the first picture (`ImageKeys.h`), read without decoding it.
    /// @{
    [[nodiscard]] static std::optional<PropertyList::Dictionary> metadata(const URL& url);
    [[nodiscard]] static std::optional<PropertyList::Dictionary> metadata(Data data);
    /// @}

    /// The stored size in pixels; absent when width or height is missing or no integer.
    /// @{
    [[nodiscard]] static std::optional<CGSize> imageSize(const PropertyList::Dictionary& metadata);
    [[nodiscard]] static std::optional<CGSize>
    imageSize(const std::optional<PropertyList::Dictionary>& metadata);
    [[nodiscard]] static std::optional<CGSize> imageSize(const URL& url);
    [[nodiscard]] static std::optional<CGSize> imageSize(Data data);
    /// @}

    /// The size once turned upright: width and height exchanged for the orientations 5 to 8.
    /// @{
    [[nodiscard]] static std::optional<CGSize>
    orientedImageSize(const PropertyList::Dictionary& metadata);
    [[nodiscard]] static std::optional<CGSize>
    orientedImageSize(const std::optional<PropertyList::Dictionary>& metadata);
    [[nodiscard]] static std::optional<CGSize> orientedImageSize(const URL& url);
    [[nodiscard]] static std::optional<CGSize> orientedImageSize(Data data);
    /// @}

    /// When the picture was taken, else when it was digitised, with the fraction of a second. A
    /// camera that does not say in which time zone is taken to be in that of the process. Absent
    /// when EXIF does not say, or not legibly.
    /// @{
    [[nodiscard]] static std::optional<Date> creationDate(const PropertyList::Dictionary& metadata);
    [[nodiscard]] static std::optional<Date>
    creationDate(const std::optional<PropertyList::Dictionary>& metadata);
    [[nodiscard]] static std::optional<Date> creationDate(const URL& url);
    /// @}

    /// Where the picture was taken; absent when it does not say, or a place that the earth has not.
    /// @{
    [[nodiscard]] static std::optional<Location> location(const PropertyList::Dictionary& metadata);
    [[nodiscard]] static std::optional<Location>
    location(const std::optional<PropertyList::Dictionary>& metadata);
    [[nodiscard]] static std::optional<Location> location(const URL& url);
    /// @}

    /// What to write beside a copy that has been turned upright (a thumbnail, `oriented`), so that
    /// nobody turns it again: without the orientation, width and height exchanged where that
    /// exchanges them, and without the compression of the original. Date, place, exposure and texts
    /// stay.
    [[nodiscard]] static PropertyList::Dictionary
    uprightMetadata(PropertyList::Dictionary metadata);

    // Pixels.

    /// The form of the bitmap, in pixels, bits and bytes.
    /// @{
    std::int64_t width() const noexcept { return bitmap_->width(); }
    std::int64_t height() const noexcept { return bitmap_->height(); }
    std::int64_t bitsPerComponent() const noexcept { return 8; }
    std::int64_t bitsPerPixel() const noexcept { return 32; }
    std::int64_t bytesPerRow() const noexcept { return bitmap_->bytesPerRow(); }
    /// @}
    /// Lives as long as the picture, which must be held.
    const Bitmap& bitmap() const noexcept { return *bitmap_; }
    /// The first byte of the top row, which lives as long.
    const std::uint8_t* uint8Data() const noexcept { return bitmap_->data(); }

    /// (width, height).
    CGSize size() const noexcept;
    /// (0, 0, width, height).
    CGRect rect() const noexcept;

    /// Where pixel (x, y) begins among the bytes, y counting rows downwards. Not checked against
    /// the picture; outside the signed 64-bit range it stops the program.
    std::int64_t offset(std::int64_t x, std::int64_t y) const noexcept {
        return byteOffset(bytesPerRow(), bitsPerPixel(), bitsPerComponent(), x, y);
    }

    // Redrawing.

    /// A transparent picture.
    [[nodiscard]] static Pointer empty(std::int64_t width, std::int64_t height);
    /// What `drawing` draws on a transparent bitmap. It must not keep the context.
    /// @{
    [[nodiscard]] static Pointer draw(std::int64_t width, std::int64_t height,
                                      const std::function<void(CGContext&)>& drawing);
    [[nodiscard]] static Pointer rgbaDraw(std::int64_t width, std::int64_t height,
                                          const std::function<void(CGContext&)>& drawing);
    /// @}
    /// The same with alpha first.
    [[nodiscard]] static Pointer argbDraw(std::int64_t width, std::int64_t height,
                                          const std::function<void(CGContext&)>& drawing);

    /// Turned and mirrored as the EXIF orientation value asks; 1 gives this very picture, a value
    /// outside 1 to 8 nothing.
    [[nodiscard]] Pointer oriented(std::int64_t exifValue) const;
    /// Undoes `oriented`.
    [[nodiscard]] Pointer unoriented(std::int64_t exifValue) const;
    /// Turned a quarter counter-clockwise, and clockwise.
    /// @{
    [[nodiscard]] Pointer rotatedLeft() const;
    [[nodiscard]] Pointer rotatedRight() const;
    /// @}
    /// Turned upright from the way the camera was held. A value that is none of the four prints
    /// "NOT SUPPORTED AVCAPTUREVIDEOORIENTATION" and gives a copy. Prints nothing when there is no
    /// memory.
    [[nodiscard]] Pointer oriented(AVCaptureVideoOrientation orientation) const;

    /// Stretched to `size`, rounded; fractions of a pixel move the picture's edge inside the
    /// outermost pixels, which are painted in full.
    [[nodiscard]] Pointer resizing(CGSize size) const;
    /// As large as fits in `size` with the aspect ratio kept, also when that enlarges it.
    [[nodiscard]] Pointer fitting(CGSize size) const;

    /// Amounts to cut off on each side; negative ones add transparent margins.
    struct Insets {
        Required<double> dx; ///< Left and right, in pixels.
        Required<double> dy; ///< Top and bottom, in pixels.
    };
    /// As fractions of the width and of the height: 0.1 cuts a tenth off each side.
    struct Fractions {
        Required<double> px; ///< Of the width.
        Required<double> py; ///< Of the height.
    };
    /// The same fraction for both.
    struct Percent {
        Required<double> percent;
    };
    /// Without what lies outside, at whole pixels or redrawn between them.
    /// @{
    [[nodiscard]] Pointer cropping(Insets by) const;
    [[nodiscard]] Pointer cropping(Fractions by) const;
    [[nodiscard]] Pointer cropping(Percent by) const;
    /// @}

    /// Drawn under `t` into a bitmap of the size that its bounds have. What `t` moves away from the
    /// origin is not brought back.
    [[nodiscard]] Pointer applying(const CGAffineTransform& t) const;

    /// The same pixels in a bitmap of their own.
    /// @{
    [[nodiscard]] Pointer drawnCopy() const;
    [[nodiscard]] Pointer rgbaDrawnCopy() const;
    /// @}
    /// The same with alpha first.
    [[nodiscard]] Pointer argbDrawnCopy() const;

    // Encoding. Absent when the encoder fails.

    /// JPEG with quality 1, TIFF compressed by LZW, the others without options.
    [[nodiscard]] std::optional<Data> data(ImageExportFormat format) const;
    /// With the options of a `CGImageDestination`, and no others.
    [[nodiscard]] std::optional<Data> data(ImageExportFormat format,
                                           const PropertyList::Dictionary& options) const;
    /// Quality 0 to 1.
    [[nodiscard]] std::optional<Data> jpegData(double quality) const;
    /// Without options. HEIC is absent where there is no encoder for it.
    /// @{
    [[nodiscard]] std::optional<Data> pngData() const;
    [[nodiscard]] std::optional<Data> heicData() const;
    /// @}
    /// Compressed by LZW.
    [[nodiscard]] std::optional<Data> tiffData() const;

private:
    struct Key {};

public:
    /// For `create`.
    CGImage(Key, std::shared_ptr<const Bitmap> bitmap) noexcept : bitmap_(std::move(bitmap)) {}

private:
    std::shared_ptr<const Bitmap> bitmap_;
};

} // namespace zorvan
