#pragma once

#include <zorvan/colour/XYZ.h>
#include <zorvan/platform/foundation/Required.h>

namespace zorvan {

/// CIE L*a*b* under D65: a colour whose `l` goes from 0 to 100.
struct LAB {
    double l = 0; ///< Lightness.
    double a = 0; ///< From green, negative, to red.
    double b = 0; ///< From blue, negative, to yellow.

    /// Another lightness.
    struct L {
        Required<double> l;
    };
    /// Another `a`.
    struct A {
        Required<double> a;
    };
    /// Another `b`.
    struct B {
        Required<double> b;
    };

    constexpr LAB() noexcept = default;
    /// The components as they are.
    constexpr LAB(double l_, double a_, double b_) noexcept : l(l_), a(a_), b(b_) {}
    /// The conversion between the two; nothing is clamped.
    /// @{
    explicit LAB(const XYZ& xyz) noexcept;

    [[nodiscard]] XYZ xyz() const noexcept { return XYZ(*this); }
    /// @}

    /// A copy with one component replaced: `lab.with({.l = 50})`.
    /// @{
    [[nodiscard]] constexpr LAB with(L value) const noexcept { return {value.l, a, b}; }
    [[nodiscard]] constexpr LAB with(A value) const noexcept { return {l, value.a, b}; }
    [[nodiscard]] constexpr LAB with(B value) const noexcept { return {l, a, value.b}; }
    /// @}

    friend constexpr bool operator==(const LAB&, const LAB&) = default;
};

inline LAB XYZ::lab() const noexcept { return LAB(*this); }

} // namespace zorvan
