#pragma once

#include <zorvan/numbers-geometry/EnumerationValue.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace zorvan {

/// A direction on a map.
class CardinalDirection : public EnumerationValue<CardinalDirection, 4> {
public:
    /// For `switch`; the raw values count from 0 in this order.
    enum class Case : std::uint8_t { east, west, north, south };
    /// The case of that name.
    /// @{
    static const CardinalDirection east, west, north, south;
    /// @}

    /// A case and its value stand for each other.
    /// @{
    constexpr CardinalDirection(Case value) noexcept : EnumerationValue(value) {}
    constexpr operator Case() const noexcept { return static_cast<Case>(rawValue()); }
    /// @}

    /// A quarter turn counter-clockwise.
    [[nodiscard]] constexpr CardinalDirection left() const noexcept {
        constexpr std::array turned{Case::north, Case::south, Case::west, Case::east};
        return turned[static_cast<std::size_t>(rawValue())];
    }
    /// A quarter turn clockwise.
    [[nodiscard]] constexpr CardinalDirection right() const noexcept {
        return left().left().left();
    }
    /// A quarter turn, to the left counter-clockwise: from north to west.
    /// @{
    constexpr void turnLeft() noexcept { *this = left(); }
    constexpr void turnRight() noexcept { *this = right(); }
    /// @}
};

inline constexpr CardinalDirection CardinalDirection::east = Case::east;
inline constexpr CardinalDirection CardinalDirection::west = Case::west;
inline constexpr CardinalDirection CardinalDirection::north = Case::north;
inline constexpr CardinalDirection CardinalDirection::south = Case::south;

} // namespace zorvan
