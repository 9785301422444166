#pragma once

#include <zorvan/numbers-geometry/CGPoint.h>

#include <optional>

namespace zorvan {

/// The infinite line `a*x + b*y + c = 0`.
struct Line {
    double a = 0; ///< Of x.
    double b = 0; ///< Of y.
    double c = 0; ///< Alone.

    constexpr Line() noexcept = default;
    /// The coefficients as they are, not normalised.
    constexpr Line(double a_, double b_, double c_) noexcept : a(a_), b(b_), c(c_) {}
    /// Through two points, normalised: `a*a + b*b = 1`. All three are 0 when the points are equal.
    Line(CGPoint p1, CGPoint p2) noexcept;

    /// Signed: positive on the side that the normal `(a, b)` points to, which is the left one on
    /// the way from the first point to the second.
    [[nodiscard]] constexpr double distance(CGPoint from) const noexcept {
        return a * from.x + b * from.y + c;
    }
    /// Absent for parallel and for equal lines.
    [[nodiscard]] constexpr std::optional<CGPoint> intersects(const Line& other) const noexcept {
        using detail::settled;
        const double determinant = settled(a * other.b) - settled(b * other.a);
        if (determinant == 0)
            return std::nullopt;
        return CGPoint((settled(b * other.c) - settled(other.b * c)) / determinant,
                       (settled(other.a * c) - settled(a * other.c)) / determinant);
    }
    /// Adds to `c`, which moves a normalised line by `-d` along its normal.
    constexpr void offsetBy(double d) noexcept { c += d; }

    friend constexpr bool operator==(const Line&, const Line&) = default;
};

} // namespace zorvan
