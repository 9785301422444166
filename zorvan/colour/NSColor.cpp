#include <zorvan/colour/NSColor.h>
#include <zorvan/colour/NSGradient.h>
#include <zorvan/numbers-geometry/RealNumber.h>

namespace zorvan {

std::optional<CGColor> CGColor::create(HexString argument) {
    const auto rgba = RGBA::make({.hexString = argument.hexString});
    return rgba ? std::optional(create({.rgba = *rgba})) : std::nullopt;
}

CGColor CGColor::randomColor() {
    const auto channel = [] { return randomUnitValue<double>(); };
    return create({.rgba = RGBA(channel(), channel(), channel(), 1)});
}

std::vector<double> CGColor::components() const {
    if (space_ == ColorSpace::gray)
        return {rgba_.r, rgba_.a};
    return {rgba_.r, rgba_.g, rgba_.b, rgba_.a};
}

std::optional<NSColor> NSColor::make(HexString argument) {
    const auto rgba = RGBA::make({.hexString = argument.hexString});
    return rgba ? std::optional(NSColor(*rgba)) : std::nullopt;
}

NSColor NSColor::blended(double fraction, const NSColor& of) const noexcept {
    const double t = fraction > 0 ? zorvan::clamp(fraction, 0, 1) : 0;
    const RGBA from = rgba();
    const RGBA to = of.rgba();
    const bool areGrey = colorSpace() == ColorSpace::gray && of.colorSpace() == ColorSpace::gray;
    return withComponents({std::lerp(from.r, to.r, t), std::lerp(from.g, to.g, t),
                           std::lerp(from.b, to.b, t), std::lerp(from.a, to.a, t)},
                          areGrey ? ColorSpace::gray : ColorSpace::rgb);
}

std::optional<NSGradient> NSColor::gradient() const {
    return NSGradient::make({.colors = {*this}});
}

} // namespace zorvan
