#include <zorvan/numbers-geometry/CGAffineTransform.h>

#include <cmath>

namespace zorvan {

CGAffineTransform::CGAffineTransform(RotationAngle argument) noexcept
    : a(std::cos(argument.rotationAngle)), b(std::sin(argument.rotationAngle)), c(-b), d(a) {}

CGAffineTransform CGAffineTransform::inverted() const noexcept {
    const double determinant = a * d - b * c;
    if (determinant == 0 || !std::isfinite(determinant))
        return *this;
    return {d / determinant,
            -b / determinant,
            -c / determinant,
            a / determinant,
            (c * ty - d * tx) / determinant,
            (b * tx - a * ty) / determinant};
}

} // namespace zorvan
