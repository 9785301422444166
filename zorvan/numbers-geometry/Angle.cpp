#include <zorvan/numbers-geometry/Angle.h>
#include <zorvan/numbers-geometry/RealNumber.h>

namespace zorvan {

double Angle::normalized(double radians) noexcept {
    const double result = positiveMod(radians, PI_2_1);
    // A tiny negative rest rounds up to the whole turn.
    return result == PI_2_1 ? 0.0 : result;
}

Angle Angle::complementary() const noexcept {
    return Angle({.radians = PI_1_2 - positiveMod(value_, PI_1_2)});
}

Angle Angle::supplementary() const noexcept {
    return Angle({.radians = PI_1_1 - positiveMod(value_, PI_1_1)});
}

Angle Angle::explementary() const noexcept { return Angle({.radians = PI_2_1 - value_}); }

Angle::Type Angle::type() const noexcept {
    if (value_ == 0)
        return Type::zero;
    if (value_ == PI_1_2)
        return Type::right;
    if (value_ == PI_1_1)
        return Type::straight;
    if (0 < value_ && value_ < PI_1_2)
        return Type::acute;
    return PI_1_2 < value_ && value_ < PI_1_1 ? Type::obtuse : Type::reflex;
}

std::string Angle::description() const { return zorvan::description(degrees()) + " deg"; }

} // namespace zorvan
