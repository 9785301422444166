#pragma once

#include <string_view>

namespace zorvan {

// Keys of picture properties, as `CGImage::metadata` gives them.

/// Width and height of the stored picture, before any orientation is applied; integers.
inline constexpr std::string_view kCGImagePropertyPixelWidth = "PixelWidth";
inline constexpr std::string_view kCGImagePropertyPixelHeight = "PixelHeight";
/// The EXIF orientation value, an integer from 1 to 8.
inline constexpr std::string_view kCGImagePropertyOrientation = "Orientation";
/// A dictionary of TIFF tags, and in it the compression code: 1 none, 5 LZW, 8 deflate.
inline constexpr std::string_view kCGImagePropertyTIFFDictionary = "{TIFF}";
inline constexpr std::string_view kCGImagePropertyTIFFCompression = "Compression";
inline constexpr std::string_view kCGImagePropertyTIFFImageDescription = "ImageDescription";
/// When the file was last changed, "yyyy:MM:dd HH:mm:ss".
inline constexpr std::string_view kCGImagePropertyTIFFDateTime = "DateTime";
/// A dictionary of EXIF tags, and in it when the picture was taken, in the same form.
inline constexpr std::string_view kCGImagePropertyExifDictionary = "{Exif}";
inline constexpr std::string_view kCGImagePropertyExifDateTimeOriginal = "DateTimeOriginal";
inline constexpr std::string_view kCGImagePropertyExifDateTimeDigitized = "DateTimeDigitized";
/// A dictionary of where the picture was taken; `CGImage::location` reads it.
inline constexpr std::string_view kCGImagePropertyGPSDictionary = "{GPS}";
/// A dictionary of IPTC records, and in it the caption, which is written as the description of a
/// picture that has no other.
inline constexpr std::string_view kCGImagePropertyIPTCDictionary = "{IPTC}";
inline constexpr std::string_view kCGImagePropertyIPTCCaptionAbstract = "Caption/Abstract";

// Options of a `CGImageSource`.

/// Hints about caching and about pixels deeper than 8 bits; both are accepted and change nothing.
inline constexpr std::string_view kCGImageSourceShouldCache = "kCGImageSourceShouldCache";
inline constexpr std::string_view kCGImageSourceShouldAllowFloat = "kCGImageSourceShouldAllowFloat";
/// Whether a thumbnail is turned upright by the picture's orientation.
inline constexpr std::string_view kCGImageSourceCreateThumbnailWithTransform =
    "kCGImageSourceCreateThumbnailWithTransform";
/// Whether a thumbnail is made from the picture even when the file has one of its own.
inline constexpr std::string_view kCGImageSourceCreateThumbnailFromImageAlways =
    "kCGImageSourceCreateThumbnailFromImageAlways";
/// Whether a thumbnail is made from the picture when the file has none of its own.
inline constexpr std::string_view kCGImageSourceCreateThumbnailFromImageIfAbsent =
    "kCGImageSourceCreateThumbnailFromImageIfAbsent";
/// The longest side that a thumbnail may have, a number.
inline constexpr std::string_view kCGImageSourceThumbnailMaxPixelSize =
    "kCGImageSourceThumbnailMaxPixelSize";

// Options of a `CGImageDestination`.

/// The quality of a lossy format, a number from 0 (smallest) to 1 (best).
inline constexpr std::string_view kCGImageDestinationLossyCompressionQuality =
    "kCGImageDestinationLossyCompressionQuality";

} // namespace zorvan
