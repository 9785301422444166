#pragma once

namespace zorvan {

/// Four numbers, as a filter takes them: the factors of red, green, blue and alpha, or a point in
/// the first two.
struct CIVector {
    /// Of any size.
    /// @{
    double x = 0;
    double y = 0;
    double z = 0;
    double w = 0;
    /// @}

    friend constexpr bool operator==(const CIVector&, const CIVector&) = default;
};

} // namespace zorvan
