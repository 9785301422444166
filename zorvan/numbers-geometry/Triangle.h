#pragma once

#include <zorvan/numbers-geometry/CGPoint.h>

#include <cstdint>

namespace zorvan {

/// Three points, in the order in which they turn.
struct Triangle {
    CGPoint a; ///< The first.
    CGPoint b; ///< The second.
    CGPoint c; ///< The third.

    /// What `collinearity` tells apart.
    enum class CollinearityState { point, line, clockwiseTurn, counterClockwiseTurn };

    constexpr Triangle() noexcept = default;
    /// The points in order; they may be equal or in line.
    constexpr Triangle(CGPoint a_, CGPoint b_, CGPoint c_) noexcept : a(a_), b(b_), c(c_) {}

    static const Triangle zero; ///< Three times the origin.

    /// Positive when the points turn counter-clockwise.
    [[nodiscard]] constexpr double signedArea() const noexcept {
        const CGPoint u = b - a;
        const CGPoint v = c - a;
        return 0.5 * (detail::settled(u.x * v.y) - detail::settled(u.y * v.x));
    }
    /// Whether the three points are similar.
    [[nodiscard]] bool isPointy(std::int64_t places) const noexcept {
        return a.isSimilarTo(b, places) && a.isSimilarTo(c, places);
    }
    /// Whether the area is similar to zero, as it also is for a single point.
    [[nodiscard]] bool isLine(std::int64_t places) const noexcept {
        return zorvan::isSimilarTo(signedArea(), 0, places);
    }
    /// A single point, a line, or else the way the points turn. An area that is NaN counts as
    /// counter-clockwise.
    [[nodiscard]] CollinearityState collinearity(std::int64_t places) const noexcept {
        if (isPointy(places))
            return CollinearityState::point;
        if (isLine(places))
            return CollinearityState::line;
        return signedArea() < 0 ? CollinearityState::clockwiseTurn
                                : CollinearityState::counterClockwiseTurn;
    }

    /// Whether each point's coordinates differ by at most `tolerance`.
    [[nodiscard]] constexpr bool overlap(const Triangle& other, double tolerance) const noexcept {
        return a.overlap(other.a, tolerance) && b.overlap(other.b, tolerance) &&
               c.overlap(other.c, tolerance);
    }
    /// Whether each coordinate rounds to the same value at that many decimal places.
    [[nodiscard]] bool isSimilarTo(const Triangle& other, std::int64_t places) const noexcept {
        return a.isSimilarTo(other.a, places) && b.isSimilarTo(other.b, places) &&
               c.isSimilarTo(other.c, places);
    }

    friend constexpr bool operator==(const Triangle&, const Triangle&) = default;

    /// Point by point and component by component; a number stands for every component.
    /// @{
    friend constexpr Triangle operator+(const Triangle& t) noexcept { return t; }
    friend constexpr Triangle operator-(const Triangle& t) noexcept { return {-t.a, -t.b, -t.c}; }
    friend constexpr Triangle operator+(const Triangle& t, const Triangle& u) noexcept {
        return {t.a + u.a, t.b + u.b, t.c + u.c};
    }
    friend constexpr Triangle operator-(const Triangle& t, const Triangle& u) noexcept {
        return {t.a - u.a, t.b - u.b, t.c - u.c};
    }
    friend constexpr Triangle operator+(const Triangle& t, double s) noexcept {
        return {t.a + s, t.b + s, t.c + s};
    }
    friend constexpr Triangle operator-(const Triangle& t, double s) noexcept {
        return {t.a - s, t.b - s, t.c - s};
    }
    friend constexpr Triangle operator+(double s, const Triangle& t) noexcept {
        return {s + t.a, s + t.b, s + t.c};
    }
    friend constexpr Triangle operator-(double s, const Triangle& t) noexcept {
        return {s - t.a, s - t.b, s - t.c};
    }
    friend constexpr Triangle operator*(const Triangle& t, double s) noexcept {
        return {t.a * s, t.b * s, t.c * s};
    }
    friend constexpr Triangle operator/(const Triangle& t, double s) noexcept {
        return {t.a / s, t.b / s, t.c / s};
    }
    constexpr Triangle& operator+=(const Triangle& u) noexcept { return *this = *this + u; }
    constexpr Triangle& operator-=(const Triangle& u) noexcept { return *this = *this - u; }
    constexpr Triangle& operator+=(double s) noexcept { return *this = *this + s; }
    constexpr Triangle& operator-=(double s) noexcept { return *this = *this - s; }
    constexpr Triangle& operator*=(double s) noexcept { return *this = *this * s; }
    constexpr Triangle& operator/=(double s) noexcept { return *this = *this / s; }
    /// @}
};

inline constexpr Triangle Triangle::zero{};

} // namespace zorvan
