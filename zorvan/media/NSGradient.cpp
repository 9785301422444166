#include <zorvan/media/NSGradient.h>

#include <zorvan/media/CGContext.h>

#include <cmath>
#include <numbers>

namespace zorvan {

void draw(const NSGradient& gradient, const CGRect& in, double angle) {
    draw(gradient, *NSBezierPath::create({.rect = in}), angle);
}

void draw(const NSGradient& gradient, const NSBezierPath& in, double angle) {
    const auto context = CGContext::current();
    const CGRect bounds = in.bounds();
    const auto drawn = gradient.cgGradient();
    if (!context || !drawn || bounds.isEmpty() || !std::isfinite(angle))
        return;
    const double radians = std::remainder(angle, 360) * std::numbers::pi / 180;
    const CGPoint along(std::cos(radians), std::sin(radians));
    // How far the corner that lies farthest in that direction is from the centre.
    const double reach =
        (std::abs(along.x) * bounds.width() + std::abs(along.y) * bounds.height()) / 2;
    const CGPoint way(along.x * reach, along.y * reach);
    context->useTemporaryGState([&] {
        in.addClip();
        context->drawLinearGradient(*drawn, bounds.center() - way, bounds.center() + way,
                                    CGGradientDrawingOptions::drawsOnBothSides);
    });
}

} // namespace zorvan
