#pragma once

#include <zorvan/platform/foundation/NameLiteral.h>

namespace zorvan {

// Keys of picture properties, as `CGImage::metadata` gives them.

/// Width and height of the stored picture, before any orientation is applied; integers.
/// @{
inline constexpr NameLiteral kCGImagePropertyPixelWidth = "PixelWidth";
inline constexpr NameLiteral kCGImagePropertyPixelHeight = "PixelHeight";
/// @}
/// The EXIF orientation value, an integer from 1 to 8.
inline constexpr NameLiteral kCGImagePropertyOrientation = "Orientation";
/// A dictionary of TIFF tags.
inline constexpr NameLiteral kCGImagePropertyTIFFDictionary = "{TIFF}";
/// In the TIFF dictionary, the compression code: 1 none, 5 LZW, 8 deflate.
inline constexpr NameLiteral kCGImagePropertyTIFFCompression = "Compression";
/// In the TIFF dictionary, a text for people.
inline constexpr NameLiteral kCGImagePropertyTIFFImageDescription = "ImageDescription";
/// When the file was last changed, "yyyy:MM:dd HH:mm:ss".
inline constexpr NameLiteral kCGImagePropertyTIFFDateTime = "DateTime";
/// A dictionary of EXIF tags.
inline constexpr NameLiteral kCGImagePropertyExifDictionary = "{Exif}";
/// In the EXIF dictionary, when the picture was taken and when it was digitised, in the same form.
/// @{
inline constexpr NameLiteral kCGImagePropertyExifDateTimeOriginal = "DateTimeOriginal";
inline constexpr NameLiteral kCGImagePropertyExifDateTimeDigitized = "DateTimeDigitized";
/// @}
/// A dictionary of where the picture was taken; `CGImage::location` reads it.
inline constexpr NameLiteral kCGImagePropertyGPSDictionary = "{GPS}";
/// A dictionary of IPTC records.
inline constexpr NameLiteral kCGImagePropertyIPTCDictionary = "{IPTC}";
/// In the IPTC dictionary, the caption, which is written as the description of a picture that has
/// no other.
inline constexpr NameLiteral kCGImagePropertyIPTCCaptionAbstract = "Caption/Abstract";

// Options of a `CGImageSource`.

/// Hints about caching and about pixels deeper than 8 bits; both are accepted and change nothing.
/// @{
inline constexpr NameLiteral kCGImageSourceShouldCache = "kCGImageSourceShouldCache";
inline constexpr NameLiteral kCGImageSourceShouldAllowFloat = "kCGImageSourceShouldAllowFloat";
/// @}
/// Whether a thumbnail is turned upright by the picture's orientation.
inline constexpr NameLiteral kCGImageSourceCreateThumbnailWithTransform =
    "kCGImageSourceCreateThumbnailWithTransform";
/// Whether a thumbnail is made from the picture even when the file has one of its own.
inline constexpr NameLiteral kCGImageSourceCreateThumbnailFromImageAlways =
    "kCGImageSourceCreateThumbnailFromImageAlways";
/// Whether a thumbnail is made from the picture when the file has none of its own.
inline constexpr NameLiteral kCGImageSourceCreateThumbnailFromImageIfAbsent =
    "kCGImageSourceCreateThumbnailFromImageIfAbsent";
/// The longest side that a thumbnail may have, a number.
inline constexpr NameLiteral kCGImageSourceThumbnailMaxPixelSize =
    "kCGImageSourceThumbnailMaxPixelSize";

// Options of a `CGImageDestination`.

/// The quality of a lossy format, a number from 0 (smallest) to 1 (best).
inline constexpr NameLiteral kCGImageDestinationLossyCompressionQuality =
    "kCGImageDestinationLossyCompressionQuality";

} // namespace zorvan
