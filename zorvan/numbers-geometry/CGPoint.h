#pragma once

#include <zorvan/numbers-geometry/RealNumber.h>
#include <zorvan/platform/foundation/Required.h>

#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace zorvan {

struct CGAffineTransform;
struct CGSize;

/// A point of the plane, or a vector; y grows upward.
struct CGPoint {
    double x = 0; ///< Rightward.
    double y = 0; ///< Upward.

    /// One value for both components.
    struct Square {
        Required<double> square;
    };
    /// Values to take; an absent one keeps the component.
    struct Components {
        std::optional<double> x = {}; ///< The value to take, or the amount to add.
        std::optional<double> y = {}; ///< The same for the other component.
    };

    constexpr CGPoint() noexcept = default;
    /// The point `(x_, y_)`.
    constexpr CGPoint(double x_, double y_) noexcept : x(x_), y(y_) {}
    /// The value for both components: `CGPoint({.square = 2})`.
    explicit constexpr CGPoint(Square argument) noexcept
        : CGPoint(argument.square, argument.square) {}

    static const CGPoint zero; ///< `(0, 0)`

    /// The distance from the origin, never negative.
    [[nodiscard]] double length() const noexcept { return std::hypot(x, y); }
    /// Half way from the origin.
    [[nodiscard]] constexpr CGPoint middle() const noexcept { return {x * 0.5, y * 0.5}; }
    /// The smaller or the larger of the two components.
    /// @{
    [[nodiscard]] constexpr double min() const noexcept { return y < x ? y : x; }
    [[nodiscard]] constexpr double max() const noexcept { return x < y ? y : x; }
    /// @}
    /// As the division of reals gives it: infinite or NaN over zero.
    /// @{
    [[nodiscard]] constexpr double xyRatio() const noexcept { return x / y; }
    [[nodiscard]] constexpr double yxRatio() const noexcept { return y / x; }
    /// @}
    /// The size `(x, y)`.
    [[nodiscard]] constexpr CGSize size() const noexcept;
    /// `(y, x)`.
    [[nodiscard]] constexpr CGPoint inversed() const noexcept { return {y, x}; }
    /// The point itself.
    [[nodiscard]] constexpr CGPoint inverted() const noexcept { return *this; }

    /// `p.with({.x = 3})`.
    [[nodiscard]] constexpr CGPoint with(Components replaced) const noexcept {
        return {replaced.x.value_or(x), replaced.y.value_or(y)};
    }
    /// `p.adding({.y = -1})`; an absent amount adds nothing.
    [[nodiscard]] constexpr CGPoint adding(Components amounts) const noexcept {
        return {x + amounts.x.value_or(0), y + amounts.y.value_or(0)};
    }

    /// Each component by itself, as the function of that name does to a number: halves round away
    /// from zero, a negative count of `places` rounds to tens, hundreds and so on.
    /// @{
    [[nodiscard]] CGPoint abs() const noexcept { return {zorvan::abs(x), zorvan::abs(y)}; }
    [[nodiscard]] CGPoint floor() const noexcept { return {zorvan::floor(x), zorvan::floor(y)}; }
    [[nodiscard]] CGPoint ceil() const noexcept { return {zorvan::ceil(x), zorvan::ceil(y)}; }
    [[nodiscard]] CGPoint round() const noexcept { return {zorvan::round(x), zorvan::round(y)}; }
    [[nodiscard]] CGPoint round(std::int64_t places) const noexcept {
        return {zorvan::round(x, places), zorvan::round(y, places)};
    }
    /// @}

    /// The scalar product.
    [[nodiscard]] constexpr double dotMult(CGPoint q) const noexcept { return x * q.x + y * q.y; }
    /// In a straight line, never negative.
    [[nodiscard]] double distance(CGPoint from) const noexcept {
        return std::hypot(x - from.x, y - from.y);
    }
    /// Scaled to that length; a point at the origin stays there.
    [[nodiscard]] CGPoint unitScale(double scale) const noexcept {
        const double l = length();
        return l == 0 ? *this : CGPoint(x * scale / l, y * scale / l);
    }

    /// Whether each component differs by at most `tolerance`, both bounds included; never for NaN.
    [[nodiscard]] constexpr bool overlap(CGPoint other, double tolerance) const noexcept {
        return zorvan::overlap(x, other.x, tolerance) && zorvan::overlap(y, other.y, tolerance);
    }
    /// Whether each component rounds to the same value at that many decimal places.
    [[nodiscard]] bool isSimilarTo(CGPoint other, std::int64_t places) const noexcept {
        return zorvan::isSimilarTo(x, other.x, places) && zorvan::isSimilarTo(y, other.y, places);
    }

    /// Of the polygon through the points, closed from the last to the first; never negative.
    [[nodiscard]] static double polygonArea(const std::vector<CGPoint>& points) noexcept;
    /// The convex hull, counter-clockwise from the point with the smallest x.
    ///
    /// Corners that turn by less than an area of half a millionth are dropped as straight. Points
    /// that share an x are taken in the order given, except that those linked by steps of at most
    /// 0.00001 in y are taken in ascending y. Points with a NaN are left out. A single point has an
    /// empty hull; of two distinct points both are the hull.
    [[nodiscard]] static std::vector<CGPoint> convexHull(const std::vector<CGPoint>& points);
    /// Puts the `convexHull` of the points in their place.
    static void convexHullInPlace(std::vector<CGPoint>& points);

    /// Where the map takes the point.
    [[nodiscard]] constexpr CGPoint applying(const CGAffineTransform& t) const noexcept;

    friend constexpr bool operator==(const CGPoint&, const CGPoint&) = default;

    /// Component by component, also the product and quotient of two points; a number stands for
    /// both components.
    /// @{
    friend constexpr CGPoint operator+(CGPoint p) noexcept { return p; }
    friend constexpr CGPoint operator-(CGPoint p) noexcept { return {-p.x, -p.y}; }
    friend constexpr CGPoint operator+(CGPoint p, CGPoint q) noexcept {
        return {p.x + q.x, p.y + q.y};
    }
    friend constexpr CGPoint operator-(CGPoint p, CGPoint q) noexcept {
        return {p.x - q.x, p.y - q.y};
    }
    friend constexpr CGPoint operator*(CGPoint p, CGPoint q) noexcept {
        return {p.x * q.x, p.y * q.y};
    }
    friend constexpr CGPoint operator/(CGPoint p, CGPoint q) noexcept {
        return {p.x / q.x, p.y / q.y};
    }
    friend constexpr CGPoint operator+(CGPoint p, double s) noexcept { return {p.x + s, p.y + s}; }
    friend constexpr CGPoint operator-(CGPoint p, double s) noexcept { return {p.x - s, p.y - s}; }
    friend constexpr CGPoint operator*(CGPoint p, double s) noexcept { return {p.x * s, p.y * s}; }
    friend constexpr CGPoint operator/(CGPoint p, double s) noexcept { return {p.x / s, p.y / s}; }
    friend constexpr CGPoint operator+(double s, CGPoint p) noexcept { return {s + p.x, s + p.y}; }
    friend constexpr CGPoint operator-(double s, CGPoint p) noexcept { return {s - p.x, s - p.y}; }
    friend constexpr CGPoint operator*(double s, CGPoint p) noexcept { return {s * p.x, s * p.y}; }
    friend constexpr CGPoint operator/(double s, CGPoint p) noexcept { return {s / p.x, s / p.y}; }
    constexpr CGPoint& operator+=(CGPoint q) noexcept { return *this = *this + q; }
    constexpr CGPoint& operator-=(CGPoint q) noexcept { return *this = *this - q; }
    constexpr CGPoint& operator+=(double s) noexcept { return *this = *this + s; }
    constexpr CGPoint& operator-=(double s) noexcept { return *this = *this - s; }
    constexpr CGPoint& operator*=(double s) noexcept { return *this = *this * s; }
    constexpr CGPoint& operator/=(double s) noexcept { return *this = *this / s; }
    /// @}
};

inline constexpr CGPoint CGPoint::zero{};

} // namespace zorvan

// The operations that reach the other records are defined with those records.
#include <zorvan/numbers-geometry/CGSize.h>
