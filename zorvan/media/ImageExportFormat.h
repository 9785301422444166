#pragma once

#include <zorvan/numbers-geometry/EnumerationValue.h>
#include <zorvan/platform/foundation/Required.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace zorvan {

/// An encoding in which pictures are written; png 1, jpg 2, tiff 3, heic 4 by their raw values.
/// Works in a `switch`, and its constants have the members:
/// `ImageExportFormat::heic.displayName()`.
class ImageExportFormat : public EnumerationValue<ImageExportFormat, 4, 1> {
public:
    /// For `switch`.
    enum class Case : std::uint8_t { png, jpg, tiff, heic };
    /// The case of that name.
    /// @{
    static const ImageExportFormat png, jpg, tiff, heic;
    /// @}
    /// In the order of the raw values.
    static const std::array<ImageExportFormat, 4> allCases;

    /// An extension without its dot.
    struct PathExtension {
        Required<std::string_view> pathExt;
    };

    /// A case and its value stand for each other.
    /// @{
    constexpr ImageExportFormat(Case value) noexcept : EnumerationValue(value) {}
    constexpr operator Case() const noexcept { return static_cast<Case>(rawValue() - 1); }
    /// @}

    /// By raw value; absent for any other number.
    using EnumerationValue::make;
    /// By file extension, without a dot and in either case; "jpeg", "tif" and "heif" are known too.
    [[nodiscard]] static constexpr std::optional<ImageExportFormat>
    make(PathExtension argument) noexcept;

    /// The file extension, without a dot.
    [[nodiscard]] constexpr std::string_view pathExtension() const noexcept {
        constexpr std::array<std::string_view, 4> names{"png", "jpg", "tiff", "heic"};
        return names[position()];
    }
    /// For people: "png", "jpeg", "tiff", "heif".
    [[nodiscard]] constexpr std::string_view displayName() const noexcept {
        constexpr std::array<std::string_view, 4> names{"png", "jpeg", "tiff", "heif"};
        return names[position()];
    }
    /// The type identifier that the encoder is asked for.
    [[nodiscard]] constexpr std::string_view cgType() const noexcept {
        constexpr std::array<std::string_view, 4> types{"public.png", "public.jpeg", "public.tiff",
                                                        "public.heic"};
        return types[position()];
    }

private:
    constexpr std::size_t position() const noexcept {
        return static_cast<std::size_t>(rawValue() - 1);
    }
};

inline constexpr ImageExportFormat ImageExportFormat::png = Case::png;
inline constexpr ImageExportFormat ImageExportFormat::jpg = Case::jpg;
inline constexpr ImageExportFormat ImageExportFormat::tiff = Case::tiff;
inline constexpr ImageExportFormat ImageExportFormat::heic = Case::heic;

inline constexpr std::array<ImageExportFormat, 4> ImageExportFormat::allCases{png, jpg, tiff, heic};

constexpr std::optional<ImageExportFormat>
ImageExportFormat::make(PathExtension argument) noexcept {
    struct Known {
        std::string_view extension;
        Case format;
    };
    constexpr std::array<Known, 7> known{{{"jpg", Case::jpg},
                                          {"jpeg", Case::jpg},
                                          {"png", Case::png},
                                          {"tiff", Case::tiff},
                                          {"tif", Case::tiff},
                                          {"heic", Case::heic},
                                          {"heif", Case::heic}}};
    const auto sameLetter = [](char given, char lower) {
        return given == lower || (given >= 'A' && given <= 'Z' && given - 'A' + 'a' == lower);
    };
    const std::string_view given = argument.pathExt;
    for (const Known& k : known) {
        bool matches = given.size() == k.extension.size();
        for (std::size_t i = 0; matches && i < given.size(); ++i)
            matches = sameLetter(given[i], k.extension[i]);
        if (matches)
            return k.format;
    }
    return std::nullopt;
}

} // namespace zorvan
