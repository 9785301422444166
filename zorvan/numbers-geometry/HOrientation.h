#pragma once

#include <zorvan/numbers-geometry/EnumerationValue.h>

#include <cstdint>

namespace zorvan {

/// A horizontal direction.
class HOrientation : public EnumerationValue<HOrientation, 2> {
public:
    /// For `switch`.
    enum class Case : std::uint8_t { left, right };
    static const HOrientation left;  ///< Raw value 0.
    static const HOrientation right; ///< Raw value 1.

    /// A case and its value stand for each other.
    /// @{
    constexpr HOrientation(Case value) noexcept : EnumerationValue(value) {}
    constexpr operator Case() const noexcept { return static_cast<Case>(rawValue()); }
    /// @}
};

inline constexpr HOrientation HOrientation::left = Case::left;
inline constexpr HOrientation HOrientation::right = Case::right;

} // namespace zorvan
