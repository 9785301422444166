#pragma once

#include <zorvan/numbers-geometry/EnumerationValue.h>

#include <cstdint>

namespace zorvan {

/// A vertical direction.
class VOrientation : public EnumerationValue<VOrientation, 2> {
public:
    /// For `switch`.
    enum class Case : std::uint8_t { up, down };
    static const VOrientation up;   ///< Raw value 0.
    static const VOrientation down; ///< Raw value 1.

    /// A case and its value stand for each other.
    /// @{
    constexpr VOrientation(Case value) noexcept : EnumerationValue(value) {}
    constexpr operator Case() const noexcept { return static_cast<Case>(rawValue()); }
    /// @}
};

inline constexpr VOrientation VOrientation::up = Case::up;
inline constexpr VOrientation VOrientation::down = Case::down;

} // namespace zorvan
