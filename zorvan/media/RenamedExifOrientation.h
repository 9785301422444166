#pragma once

#include <zorvan/media/OrientationComposition.h>
#include <zorvan/platform/foundation/Required.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace zorvan {

/// The eight EXIF orientation tags under up, down, left and right names; the raw value is the EXIF
/// value. `left` is 6 and `right` is 8. Works in a `switch`, and its constants have the members.
class RenamedExifOrientation : public OrientationComposition<RenamedExifOrientation> {
public:
    /// For `switch`; in the order of the EXIF values 1 to 8.
    enum class Case : std::uint8_t {
        up,
        upMirrored,
        down,
        downMirrored,
        leftMirrored,
        left,
        rightMirrored,
        right
    };
    /// The case of that name.
    /// @{
    static const RenamedExifOrientation up, upMirrored, down, downMirrored;
    static const RenamedExifOrientation leftMirrored, left, rightMirrored, right;
    /// @}
    /// In the order of the raw values.
    static const std::array<RenamedExifOrientation, 8> allCases;

    /// An EXIF value.
    struct RawValue {
        Required<std::int64_t> rawValue;
    };

    /// A case and its value stand for each other.
    /// @{
    constexpr RenamedExifOrientation(Case value) noexcept
        : OrientationComposition(static_cast<std::uint8_t>(value)) {}
    constexpr operator Case() const noexcept { return static_cast<Case>(position()); }
    /// @}

    /// 1 to 8; absent for any other number.
    [[nodiscard]] static constexpr std::optional<RenamedExifOrientation>
    make(RawValue argument) noexcept {
        if (argument.rawValue < 1 || argument.rawValue > 8)
            return std::nullopt;
        return static_cast<Case>(argument.rawValue - 1);
    }

    /// The EXIF value, 1 to 8.
    [[nodiscard]] constexpr std::int64_t rawValue() const noexcept { return position() + 1; }
};

inline constexpr RenamedExifOrientation RenamedExifOrientation::up = Case::up;
inline constexpr RenamedExifOrientation RenamedExifOrientation::upMirrored = Case::upMirrored;
inline constexpr RenamedExifOrientation RenamedExifOrientation::down = Case::down;
inline constexpr RenamedExifOrientation RenamedExifOrientation::downMirrored = Case::downMirrored;
inline constexpr RenamedExifOrientation RenamedExifOrientation::leftMirrored = Case::leftMirrored;
inline constexpr RenamedExifOrientation RenamedExifOrientation::left = Case::left;
inline constexpr RenamedExifOrientation RenamedExifOrientation::rightMirrored = Case::rightMirrored;
inline constexpr RenamedExifOrientation RenamedExifOrientation::right = Case::right;

inline constexpr std::array<RenamedExifOrientation, 8> RenamedExifOrientation::allCases{
    up, upMirrored, down, downMirrored, leftMirrored, left, rightMirrored, right};

} // namespace zorvan

template <>
struct std::hash<zorvan::RenamedExifOrientation> {
    std::size_t operator()(zorvan::RenamedExifOrientation orientation) const noexcept {
        return std::hash<std::int64_t>()(orientation.rawValue());
    }
};
