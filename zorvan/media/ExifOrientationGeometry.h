#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <optional>

namespace zorvan {

/// What an EXIF orientation value, 1 to 8, does to a picture that is drawn centred on the origin, y
/// growing upward: it is scaled first, then turned.
struct ExifOrientationGeometry {
    /// Counter-clockwise, in radians.
    double angle;
    /// 1, or -1 for a mirror.
    /// @{
    double scaleX;
    double scaleY;
    /// @}
    /// Whether the result is as wide as the picture is high.
    bool swapsSides;
    /// The value that undoes this one.
    std::int64_t inverse;

    /// An EXIF orientation value.
    struct ExifValue {
        Required<std::int64_t> exifValue;
    };

    /// Absent outside 1 to 8.
    [[nodiscard]] static constexpr std::optional<ExifOrientationGeometry>
    make(ExifValue argument) noexcept {
        constexpr double pi = std::numbers::pi;
        constexpr std::array<ExifOrientationGeometry, 8> geometries{{{0, 1, 1, false, 1},
                                                                     {0, -1, 1, false, 2},
                                                                     {pi, 1, 1, false, 3},
                                                                     {pi, -1, 1, false, 4},
                                                                     {3 * pi / 2, 1, -1, true, 5},
                                                                     {3 * pi / 2, 1, 1, true, 8},
                                                                     {pi / 2, 1, -1, true, 7},
                                                                     {pi / 2, 1, 1, true, 6}}};
        if (argument.exifValue < 1 || argument.exifValue > 8)
            return std::nullopt;
        return geometries[static_cast<std::size_t>(argument.exifValue - 1)];
    }
};

} // namespace zorvan
