#pragma once

#include <zorvan/media/OrientationComposition.h>
#include <zorvan/media/RenamedExifOrientation.h>
#include <zorvan/platform/foundation/Required.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace zorvan {

/// The eight EXIF orientation tags, named after what they do to the picture; the raw value is the
/// name, and that bare text is how an orientation is stored. Works in a `switch`, and its constants
/// have the members.
class ExifOrientation : public OrientationComposition<ExifOrientation> {
public:
    /// For `switch`; in the order of the EXIF values 1 to 8.
    enum class Case : std::uint8_t {
        horizontal,
        mirrorHorizontal,
        rotate180,
        mirrorVertical,
        mirrorHorizontalAndRotate270CW,
        rotate90CW,
        mirrorHorizontalAndRotate90CW,
        rotate270CW
    };
    /// The case of that name.
    /// @{
    static const ExifOrientation horizontal, mirrorHorizontal, rotate180, mirrorVertical;
    static const ExifOrientation mirrorHorizontalAndRotate270CW, rotate90CW;
    static const ExifOrientation mirrorHorizontalAndRotate90CW, rotate270CW;
    /// @}
    /// In the order of the EXIF values 1 to 8.
    static const std::array<ExifOrientation, 8> allCases;

    /// A name.
    struct RawValue {
        Required<std::string_view> rawValue;
    };
    /// The same tag under its other name.
    struct Renamed {
        Required<RenamedExifOrientation> renamed;
    };

    /// A case, its value and its other name stand for each other.
    /// @{
    constexpr ExifOrientation(Case value) noexcept
        : OrientationComposition(static_cast<std::uint8_t>(value)) {}
    explicit constexpr ExifOrientation(Renamed argument) noexcept
        : ExifOrientation(static_cast<Case>(argument.renamed.value.rawValue() - 1)) {}
    constexpr operator Case() const noexcept { return static_cast<Case>(position()); }
    /// @}

    /// By the exact name; absent when it is none of the eight.
    [[nodiscard]] static constexpr std::optional<ExifOrientation> make(RawValue argument) noexcept {
        for (std::size_t i = 0; i < names.size(); ++i)
            if (names[i] == argument.rawValue.value)
                return static_cast<Case>(i);
        return std::nullopt;
    }

    /// The name of the case.
    [[nodiscard]] constexpr std::string_view rawValue() const noexcept { return names[position()]; }
    /// The same tag under its other name.
    [[nodiscard]] constexpr RenamedExifOrientation renamed() const noexcept {
        return static_cast<RenamedExifOrientation::Case>(position());
    }

private:
    static constexpr std::array<std::string_view, 8> names{"horizontal",
                                                           "mirrorHorizontal",
                                                           "rotate180",
                                                           "mirrorVertical",
                                                           "mirrorHorizontalAndRotate270CW",
                                                           "rotate90CW",
                                                           "mirrorHorizontalAndRotate90CW",
                                                           "rotate270CW"};
};

inline constexpr ExifOrientation ExifOrientation::horizontal = Case::horizontal;
inline constexpr ExifOrientation ExifOrientation::mirrorHorizontal = Case::mirrorHorizontal;
inline constexpr ExifOrientation ExifOrientation::rotate180 = Case::rotate180;
inline constexpr ExifOrientation ExifOrientation::mirrorVertical = Case::mirrorVertical;
inline constexpr ExifOrientation ExifOrientation::mirrorHorizontalAndRotate270CW =
    Case::mirrorHorizontalAndRotate270CW;
inline constexpr ExifOrientation ExifOrientation::rotate90CW = Case::rotate90CW;
inline constexpr ExifOrientation ExifOrientation::mirrorHorizontalAndRotate90CW =
    Case::mirrorHorizontalAndRotate90CW;
inline constexpr ExifOrientation ExifOrientation::rotate270CW = Case::rotate270CW;

inline constexpr std::array<ExifOrientation, 8> ExifOrientation::allCases{
    horizontal,
    mirrorHorizontal,
    rotate180,
    mirrorVertical,
    mirrorHorizontalAndRotate270CW,
    rotate90CW,
    mirrorHorizontalAndRotate90CW,
    rotate270CW};

} // namespace zorvan

template <>
struct std::hash<zorvan::ExifOrientation> {
    std::size_t operator()(zorvan::ExifOrientation orientation) const noexcept {
        return std::hash<std::string_view>()(orientation.rawValue());
    }
};
