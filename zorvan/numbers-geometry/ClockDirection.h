#pragma once

#include <zorvan/numbers-geometry/EnumerationValue.h>

#include <cstdint>

namespace zorvan {

/// A sense of rotation.
class ClockDirection : public EnumerationValue<ClockDirection, 2> {
public:
    /// For `switch`.
    enum class Case : std::uint8_t { clockwise, antiClockwise };
    static const ClockDirection clockwise;     ///< Raw value 0.
    static const ClockDirection antiClockwise; ///< Raw value 1.

    /// A case and its value stand for each other.
    /// @{
    constexpr ClockDirection(Case value) noexcept : EnumerationValue(value) {}
    constexpr operator Case() const noexcept { return static_cast<Case>(rawValue()); }
    /// @}
};

inline constexpr ClockDirection ClockDirection::clockwise = Case::clockwise;
inline constexpr ClockDirection ClockDirection::antiClockwise = Case::antiClockwise;

} // namespace zorvan
