#pragma once

#include <zorvan/numbers-geometry/EnumerationValue.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace zorvan {

/// A direction on a screen. `left_()` and `right_()` carry the underscore because `left` and
/// `right` are cases.
class Orientation : public EnumerationValue<Orientation, 4> {
public:
    /// For `switch`; the raw values count from 0 in this order.
    enum class Case : std::uint8_t { up, down, right, left };
    /// The case of that name.
    /// @{
    static const Orientation up, down, right, left;
    /// @}

    /// A case and its value stand for each other.
    /// @{
    constexpr Orientation(Case value) noexcept : EnumerationValue(value) {}
    constexpr operator Case() const noexcept { return static_cast<Case>(rawValue()); }
    /// @}

    /// A quarter turn counter-clockwise.
    [[nodiscard]] constexpr Orientation left_() const noexcept {
        constexpr std::array turned{Case::left, Case::right, Case::up, Case::down};
        return turned[static_cast<std::size_t>(rawValue())];
    }
    /// A quarter turn clockwise.
    [[nodiscard]] constexpr Orientation right_() const noexcept { return left_().left_().left_(); }
    /// A quarter turn, to the left counter-clockwise.
    /// @{
    constexpr void turnLeft() noexcept { *this = left_(); }
    constexpr void turnRight() noexcept { *this = right_(); }
    /// @}
};

inline constexpr Orientation Orientation::up = Case::up;
inline constexpr Orientation Orientation::down = Case::down;
inline constexpr Orientation Orientation::right = Case::right;
inline constexpr Orientation Orientation::left = Case::left;

} // namespace zorvan
