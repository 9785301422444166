#pragma once

#include <zorvan/numbers-geometry/CATransform3D.h>
#include <zorvan/numbers-geometry/CGPoint.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/platform/foundation/Required.h>

namespace zorvan {

/// A plane affine map on row vectors: `x' = a*x + c*y + tx`, `y' = b*x + d*y + ty`.
struct CGAffineTransform {
    double a = 1;  ///< Of x in x'.
    double b = 0;  ///< Of x in y'.
    double c = 0;  ///< Of y in x'.
    double d = 1;  ///< Of y in y'.
    double tx = 0; ///< Added to x'.
    double ty = 0; ///< Added to y'.

    /// An angle in radians, counter-clockwise.
    struct RotationAngle {
        Required<double> rotationAngle;
    };
    /// How far to move.
    struct Translation {
        Required<double> translationX; ///< Along x.
        Required<double> y;            ///< Along y.
    };
    /// Two factors.
    struct Scales {
        Required<double> scaleX; ///< Along x.
        Required<double> y;      ///< Along y.
    };
    /// One factor for both axes.
    struct Scale {
        Required<double> scale;
    };

    /// The identity.
    constexpr CGAffineTransform() noexcept = default;
    /// The coefficients as they are.
    constexpr CGAffineTransform(double a_, double b_, double c_, double d_, double tx_,
                                double ty_) noexcept
        : a(a_), b(b_), c(c_), d(d_), tx(tx_), ty(ty_) {}
    /// Counter-clockwise, in radians: `CGAffineTransform({.rotationAngle = PI_1_2})`.
    explicit CGAffineTransform(RotationAngle argument) noexcept;
    /// Moves by that much.
    explicit constexpr CGAffineTransform(Translation by) noexcept : tx(by.translationX), ty(by.y) {}
    /// Stretches each axis by its factor, from the origin.
    explicit constexpr CGAffineTransform(Scales by) noexcept : a(by.scaleX), d(by.y) {}
    /// By the same factor on both axes.
    explicit constexpr CGAffineTransform(Scale by) noexcept : a(by.scale), d(by.scale) {}

    static const CGAffineTransform identity; ///< Takes every point to itself.

    /// By exact comparison.
    [[nodiscard]] constexpr bool isIdentity() const noexcept {
        return *this == CGAffineTransform();
    }

    /// This map first, then `t`.
    [[nodiscard]] constexpr CGAffineTransform
    concatenating(const CGAffineTransform& t) const noexcept {
        return {a * t.a + b * t.c, a * t.b + b * t.d,          c * t.a + d * t.c,
                c * t.b + d * t.d, tx * t.a + ty * t.c + t.tx, tx * t.b + ty * t.d + t.ty};
    }
    /// The move or stretch first, then this map.
    /// @{
    [[nodiscard]] constexpr CGAffineTransform translatedBy(double x, double y) const noexcept {
        return CGAffineTransform(1, 0, 0, 1, x, y).concatenating(*this);
    }
    [[nodiscard]] constexpr CGAffineTransform scaledBy(double x, double y) const noexcept {
        return CGAffineTransform(x, 0, 0, y, 0, 0).concatenating(*this);
    }
    /// @}
    /// The turn first, counter-clockwise and in radians, then this map.
    [[nodiscard]] CGAffineTransform rotatedBy(double angle) const noexcept {
        return CGAffineTransform({.rotationAngle = angle}).concatenating(*this);
    }
    /// The map that undoes this one; this one itself when nothing does (its determinant is zero or
    /// not finite).
    [[nodiscard]] CGAffineTransform inverted() const noexcept;

    /// Changes the map into what `concatenating`, `rotatedBy`, `translatedBy` or `scaledBy` gives.
    /// @{
    constexpr void concate(const CGAffineTransform& t) noexcept { *this = concatenating(t); }
    void rotate(double angle) noexcept { *this = rotatedBy(angle); }
    constexpr void translateBy(double x, double y) noexcept { *this = translatedBy(x, y); }
    constexpr void scaleBy(double x, double y) noexcept { *this = scaledBy(x, y); }
    constexpr void scaleBy(double scale) noexcept { scaleBy(scale, scale); }
    /// @}

    /// The same map of the plane in space, which leaves z alone.
    [[nodiscard]] constexpr CATransform3D caTransform3D() const noexcept {
        return {.m11 = a, .m12 = b, .m21 = c, .m22 = d, .m41 = tx, .m42 = ty};
    }

    friend constexpr bool operator==(const CGAffineTransform&, const CGAffineTransform&) = default;
};

inline constexpr CGAffineTransform CGAffineTransform::identity{};

constexpr CGPoint CGPoint::applying(const CGAffineTransform& t) const noexcept {
    return {t.a * x + t.c * y + t.tx, t.b * x + t.d * y + t.ty};
}

constexpr CGSize CGSize::applying(const CGAffineTransform& t) const noexcept {
    return {t.a * width + t.c * height, t.b * width + t.d * height};
}

} // namespace zorvan
