#pragma once

namespace zorvan {

/// A 4 x 4 matrix that acts on row vectors; the translation stands in the fourth row.
struct CATransform3D {
    /// Row and column, counted from 1; the defaults are the identity.
    /// @{
    double m11 = 1, m12 = 0, m13 = 0, m14 = 0;
    double m21 = 0, m22 = 1, m23 = 0, m24 = 0;
    double m31 = 0, m32 = 0, m33 = 1, m34 = 0;
    double m41 = 0, m42 = 0, m43 = 0, m44 = 1;
    /// @}

    friend constexpr bool operator==(const CATransform3D&, const CATransform3D&) = default;
};

} // namespace zorvan
