#include <zorvan/media/NSBezierPath.h>

#include <zorvan/media/CGContext.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <numbers>

namespace zorvan {

namespace {

void requireCurrentPoint(const CGPath& path) {
    if (path.isEmpty())
        fatalError("The path has no current point.");
}

} // namespace

NSBezierPath::Pointer NSBezierPath::create(Rect argument) {
    CGPath path;
    path.addRect(argument.rect);
    return create(std::move(path));
}

NSBezierPath::Pointer NSBezierPath::create(RoundedRect argument) {
    CGPath path;
    path.addRoundedRect(argument.roundedRect, argument.xRadius, argument.yRadius);
    return create(std::move(path));
}

NSBezierPath::Pointer NSBezierPath::create(OvalInRect argument) {
    CGPath path;
    path.addEllipse(argument.ovalIn);
    return create(std::move(path));
}

void NSBezierPath::line(CGPoint to) {
    requireCurrentPoint(path_);
    path_.addLineTo(to);
}

void NSBezierPath::curve(CGPoint to, CGPoint controlPoint1, CGPoint controlPoint2) {
    requireCurrentPoint(path_);
    path_.addCurveTo(controlPoint1, controlPoint2, to);
}

void NSBezierPath::relativeMove(CGPoint by) {
    requireCurrentPoint(path_);
    path_.moveTo(currentPoint() + by);
}

void NSBezierPath::relativeLine(CGPoint by) { line(currentPoint() + by); }

void NSBezierPath::appendArc(CGPoint center, double radius, double startAngle, double endAngle,
                             bool clockwise) {
    constexpr double radians = std::numbers::pi / 180;
    path_.addArc(center, radius, startAngle * radians, endAngle * radians, clockwise);
}

void NSBezierPath::fill() const {
    if (const auto context = CGContext::current())
        context->fill(path_, windingRule_);
}

void NSBezierPath::stroke() const {
    const auto context = CGContext::current();
    if (!context)
        return;
    context->useTemporaryGState([&] {
        context->setLineWidth(stroke_.lineWidth);
        context->setLineCap(stroke_.lineCap);
        context->setLineJoin(stroke_.lineJoin);
        context->setMiterLimit(stroke_.miterLimit);
        context->setLineDash(stroke_.dashPhase, stroke_.dash);
        context->stroke(path_);
    });
}

void NSBezierPath::addClip() const {
    const auto context = CGContext::current();
    if (!context)
        return;
    context->beginPath();
    context->addPath(path_);
    context->clip(windingRule_);
}

} // namespace zorvan
