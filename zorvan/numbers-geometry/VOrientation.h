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
    constexpr VOrientation(Case value) noexcept
        : EnumerationValue(static_cast<std::int64_t>(value)) {}
    constexpr operator Case() const noexcept { return static_cast<Case>(rawValue()); }
    /// @}

    /// The other case.
    /// @{
    [[nodiscard]] constexpr VOrientation toggled() const noexcept {
        return *this == up ? down : up;
    }
    constexpr void toggle() noexcept { *this = toggled(); }
    /// @}
};

inline constexpr VOrientation VOrientation::up = Case::up;
inline constexpr VOrientation VOrientation::down = Case::down;

} // namespace zorvan
