#pragma once

#include <zorvan/media/StringValue.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace zorvan {

/// A kind of media file, by its type identifier. Any text is one; the constants below are the known
/// ones.
///
/// The tables are in `Zorvan::MediaAssets`; the raw value needs no library.
class AVFileType : public StringValue<AVFileType> {
public:
    using StringValue::StringValue;

    /// The file extension, without a dot. Stops the program with "AVFileType is not supported " and
    /// the raw value for a type that is none of the constants.
    [[nodiscard]] std::string_view pathExtension() const;

    /// The constants in their order, without `AVFileTypeCoreAudioFormat`.
    [[nodiscard]] static std::span<const AVFileType> allValues() noexcept;
    /// The position in `allValues`; 0 for a type that is not there.
    [[nodiscard]] std::int64_t index() const noexcept;

    /// Extensions of movies and of sounds, in lower case and without a dot.
    /// @{
    [[nodiscard]] static std::span<const std::string_view> videoExtensions() noexcept;
    [[nodiscard]] static std::span<const std::string_view> audioExtensions() noexcept;
    /// @}
};

/// Its type identifier is its raw value.
/// @{
inline constinit const AVFileType AVFileTypeAC3({.literal = "public.ac3-audio"});
inline constinit const AVFileType AVFileTypeAMR({.literal = "org.3gpp.adaptive-multi-rate-audio"});
inline constinit const AVFileType AVFileTypeDNG({.literal = "com.adobe.raw-image"});
inline constinit const AVFileType AVFileType3GPP({.literal = "public.3gpp"});
inline constinit const AVFileType AVFileTypeAIFC({.literal = "public.aifc-audio"});
inline constinit const AVFileType AVFileTypeAIFF({.literal = "public.aiff-audio"});
inline constinit const AVFileType AVFileTypeAVCI({.literal = "public.avci"});
inline constinit const AVFileType AVFileTypeHEIC({.literal = "public.heic"});
inline constinit const AVFileType AVFileTypeHEIF({.literal = "public.heif"});
inline constinit const AVFileType AVFileTypeJPEG({.literal = "public.jpeg"});
inline constinit const AVFileType AVFileTypeTIFF({.literal = "public.tiff"});
inline constinit const AVFileType AVFileTypeWAVE({.literal = "com.microsoft.waveform-audio"});
inline constinit const AVFileType AVFileType3GPP2({.literal = "public.3gpp2"});
inline constinit const AVFileType AVFileTypeMPEG4({.literal = "public.mpeg-4"});
inline constinit const AVFileType AVFileTypeSunAU({.literal = "public.au-audio"});
inline constinit const AVFileType AVFileTypeAppleM4A({.literal = "com.apple.m4a-audio"});
inline constinit const AVFileType AVFileTypeAppleM4V({.literal = "com.apple.m4v-video"});
inline constinit const AVFileType AVFileTypeMPEGLayer3({.literal = "public.mp3"});
inline constinit const AVFileType AVFileTypeEnhancedAC3({.literal = "public.enhanced-ac3-audio"});
inline constinit const AVFileType
    AVFileTypeQuickTimeMovie({.literal = "com.apple.quicktime-movie"});
inline constinit const AVFileType
    AVFileTypeCoreAudioFormat({.literal = "com.apple.coreaudio-format"});
/// @}

} // namespace zorvan
