#pragma once

#include <zorvan/numbers-geometry/EnumerationValue.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace zorvan {

/// One of the eight handles of a rectangle; y grows upward. Works in a `switch`, and its constants
/// have the members: `RectAnchor::topLeft.opposed()`.
class RectAnchor : public EnumerationValue<RectAnchor, 8> {
public:
    /// For `switch`; the raw values count from 0 in this order.
    enum class Case : std::uint8_t {
        topLeft,
        topRight,
        bottomRight,
        bottomLeft,
        middleLeft,
        topCenter,
        middleRight,
        bottomCenter
    };
    /// A corner (top, bottom), the middle of the left or right edge, or the centre of the top or
    /// bottom edge.
    /// @{
    static const RectAnchor topLeft, topRight, bottomRight, bottomLeft;
    static const RectAnchor middleLeft, topCenter, middleRight, bottomCenter;
    /// @}

    /// A case and its value stand for each other.
    /// @{
    constexpr RectAnchor(Case value) noexcept : EnumerationValue(value) {}
    constexpr operator Case() const noexcept { return static_cast<Case>(rawValue()); }
    /// @}

    /// Whether it lies on that edge, corners included.
    /// @{
    [[nodiscard]] constexpr bool isTop() const noexcept {
        return isOneOf({Case::topLeft, Case::topRight, Case::topCenter});
    }
    [[nodiscard]] constexpr bool isBottom() const noexcept {
        return isOneOf({Case::bottomRight, Case::bottomLeft, Case::bottomCenter});
    }
    [[nodiscard]] constexpr bool isLeft() const noexcept {
        return isOneOf({Case::topLeft, Case::bottomLeft, Case::middleLeft});
    }
    [[nodiscard]] constexpr bool isRight() const noexcept {
        return isOneOf({Case::topRight, Case::bottomRight, Case::middleRight});
    }
    /// @}
    /// The first four.
    [[nodiscard]] constexpr bool isCorner() const noexcept { return rawValue() < 4; }
    /// On the middle of the left or right edge.
    [[nodiscard]] constexpr bool isMiddle() const noexcept {
        return isOneOf({Case::middleLeft, Case::middleRight});
    }
    /// On the centre of the top or bottom edge.
    [[nodiscard]] constexpr bool isCenter() const noexcept {
        return isOneOf({Case::topCenter, Case::bottomCenter});
    }

    /// The handle across the rectangle.
    [[nodiscard]] constexpr RectAnchor opposed() const noexcept {
        RectAnchor result = *this;
        result.flipVertical();
        result.flipHorizontal();
        return result;
    }
    /// Exchanges top and bottom.
    constexpr void flipVertical() noexcept {
        constexpr std::array<Case, 8> flipped{
            Case::bottomLeft, Case::bottomRight,  Case::topRight,    Case::topLeft,
            Case::middleLeft, Case::bottomCenter, Case::middleRight, Case::topCenter};
        *this = flipped[static_cast<std::size_t>(rawValue())];
    }
    /// Exchanges left and right.
    constexpr void flipHorizontal() noexcept {
        constexpr std::array<Case, 8> flipped{
            Case::topRight,    Case::topLeft,   Case::bottomLeft, Case::bottomRight,
            Case::middleRight, Case::topCenter, Case::middleLeft, Case::bottomCenter};
        *this = flipped[static_cast<std::size_t>(rawValue())];
    }

    /// In raw-value order.
    static const std::array<RectAnchor, 8> allValues;
    /// The four corners, the two on the left and right edge, and the two on the top and bottom
    /// edge, in raw-value order.
    /// @{
    static const std::array<RectAnchor, 4> allCorners;
    static const std::array<RectAnchor, 2> allMiddles;
    static const std::array<RectAnchor, 2> allCenters;
    /// @}

private:
    constexpr bool isOneOf(std::initializer_list<Case> cases) const noexcept {
        for (const Case one : cases)
            if (one == Case(*this))
                return true;
        return false;
    }
};

inline constexpr RectAnchor RectAnchor::topLeft = Case::topLeft;
inline constexpr RectAnchor RectAnchor::topRight = Case::topRight;
inline constexpr RectAnchor RectAnchor::bottomRight = Case::bottomRight;
inline constexpr RectAnchor RectAnchor::bottomLeft = Case::bottomLeft;
inline constexpr RectAnchor RectAnchor::middleLeft = Case::middleLeft;
inline constexpr RectAnchor RectAnchor::topCenter = Case::topCenter;
inline constexpr RectAnchor RectAnchor::middleRight = Case::middleRight;
inline constexpr RectAnchor RectAnchor::bottomCenter = Case::bottomCenter;

inline constexpr std::array<RectAnchor, 8> RectAnchor::allValues{
    topLeft, topRight, bottomRight, bottomLeft, middleLeft, topCenter, middleRight, bottomCenter};
inline constexpr std::array<RectAnchor, 4> RectAnchor::allCorners{topLeft, topRight, bottomRight,
                                                                  bottomLeft};
inline constexpr std::array<RectAnchor, 2> RectAnchor::allMiddles{middleLeft, middleRight};
inline constexpr std::array<RectAnchor, 2> RectAnchor::allCenters{topCenter, bottomCenter};

} // namespace zorvan
