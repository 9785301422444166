#include <zorvan/media/CGContext.h>

#include <zorvan/media/internal/patternPaint.h>
#include <zorvan/platform/graphics/drawAttributedText.h>

#include <algorithm>
#include <cmath>

namespace zorvan {

namespace {

PaintColor paintColor(const CGColor& color) noexcept {
    const RGBA& c = color.rgba();
    return {c.r, c.g, c.b, c.a};
}

CGPath rectangle(const CGRect& rect) {
    CGPath path;
    path.addRect(rect);
    return path;
}

CGPath ellipse(const CGRect& rect) {
    CGPath path;
    path.addEllipse(rect);
    return path;
}

bool has(CGGradientDrawingOptions options, CGGradientDrawingOptions wanted) noexcept {
    return (static_cast<int>(options) & static_cast<int>(wanted)) != 0;
}

std::vector<GradientPaint::Stop> stopsOf(const CGGradient& gradient) {
    std::vector<GradientPaint::Stop> stops;
    for (std::size_t i = 0; i < gradient.colors().size(); ++i)
        stops.push_back({gradient.locations()[i], paintColor(gradient.colors()[i])});
    return stops;
}

/// What of a plane a linear gradient paints: `all` holds everything that shows.
CGPath stripOf(CGPoint start, CGPoint end, CGGradientDrawingOptions options, const CGRect& all) {
    const double length = std::hypot(end.x - start.x, end.y - start.y);
    const CGPoint along((end.x - start.x) / length, (end.y - start.y) / length);
    const CGPoint middle = all.center();
    const double reach = std::hypot(all.width(), all.height()) +
                         std::hypot(middle.x - start.x, middle.y - start.y) + length + 1;
    const double from =
        has(options, CGGradientDrawingOptions::drawsBeforeStartLocation) ? -reach : 0;
    const double to =
        has(options, CGGradientDrawingOptions::drawsAfterEndLocation) ? reach : length;
    const auto at = [&](double forward, double aside) {
        return CGPoint(start.x + along.x * forward - along.y * aside,
                       start.y + along.y * forward + along.x * aside);
    };
    CGPath path;
    path.moveTo(at(from, -reach));
    path.addLineTo(at(to, -reach));
    path.addLineTo(at(to, reach));
    path.addLineTo(at(from, reach));
    path.closeSubpath();
    return path;
}

} // namespace

void CGContext::setFillColor(const CGColor& color) noexcept { state_.fill = paintColor(color); }

void CGContext::setStrokeColor(const CGColor& color) noexcept {
    state_.strokePaint = paintColor(color);
}

void CGContext::setFillColoredPattern(const CGPattern& pattern, double alpha) {
    const CGAffineTransform upward(1, 0, 0, -1, 0, static_cast<double>(height_));
    state_.fill =
        patternPaint(pattern, base_.concatenating(upward), alpha > 0 ? std::min(alpha, 1.0) : 0);
}

void CGContext::setLineDash(double phase, std::vector<double> lengths) {
    state_.stroke.dash = std::move(lengths);
    state_.stroke.dashPhase = phase;
}

void CGContext::setAlpha(double alpha) noexcept {
    state_.style.alpha = alpha > 0 ? std::min(alpha, 1.0) : 0;
}

void CGContext::moveTo(double x, double y) { path_.moveTo(CGPoint(x, y).applying(toPixels())); }

void CGContext::addLineTo(double x, double y) {
    path_.addLineTo(CGPoint(x, y).applying(toPixels()));
}

void CGContext::addCurveTo(CGPoint control1, CGPoint control2, CGPoint end) {
    const CGAffineTransform t = toPixels();
    path_.addCurveTo(control1.applying(t), control2.applying(t), end.applying(t));
}

void CGContext::addPath(const CGPath& path) { path_.addPath(path.applying(toPixels())); }

CGPath CGContext::pathOf(const CGRect& rect) const { return rectangle(rect).applying(toPixels()); }

void CGContext::addRect(const CGRect& rect) { path_.addPath(pathOf(rect)); }

void CGContext::addEllipse(const CGRect& rect) { addPath(ellipse(rect)); }

void CGContext::addArc(CGPoint center, double radius, double startAngle, double endAngle,
                       bool clockwise) {
    CGPath arc;
    arc.addArc(center, radius, startAngle, endAngle, clockwise);
    const CGPath placed = arc.applying(toPixels());
    for (const auto& [type, points] : placed.elements())
        if (type == CGPath::ElementType::addCurveToPoint)
            path_.addCurveTo(points[0], points[1], points[2]);
        else if (path_.isEmpty())
            path_.moveTo(points[0]);
        else
            path_.addLineTo(points[0]);
}

void CGContext::addRoundedRec(const CGRect& rect, double corner) {
    CGPath path;
    path.addRoundedRect(rect, corner, corner);
    addPath(path);
}

void CGContext::fillPath(CGPathFillRule rule) {
    const CGPath path = std::exchange(path_, {});
    if (hasPixels() && !path.isEmpty())
        zorvan::fillPath(drawingTarget(), path, rule, state_.fill, state_.style);
}

void CGContext::strokePath() {
    const CGPath path = std::exchange(path_, {});
    if (!hasPixels() || path.isEmpty())
        return;
    StrokeStyle stroke = state_.stroke;
    stroke.toTarget = toPixels();
    zorvan::strokePath(drawingTarget(), path, stroke, state_.strokePaint, state_.style);
}

void CGContext::clipToPixels(CGPath path, CGPathFillRule rule) {
    state_.style.clip = DrawingClip::make(std::move(path), rule, state_.style.clip);
}

void CGContext::clip(CGPathFillRule rule) { clipToPixels(std::exchange(path_, {}), rule); }

void CGContext::clip(const CGRect& rect) {
    beginPath();
    clipToPixels(pathOf(rect), CGPathFillRule::winding);
}

void CGContext::clip(const CGRect& rect, double corner) {
    beginPath();
    addRoundedRec(rect, corner);
    clip();
}

CGRect CGContext::boundingBoxOfClipPath() const noexcept {
    const CGRect all(0, 0, static_cast<double>(width_), static_cast<double>(height_));
    const CGRect pixels = state_.style.clip ? all.intersection(state_.style.clip->bounds) : all;
    return pixels.applying(toPixels().inverted());
}

void CGContext::fill(const CGPath& path, CGPathFillRule rule) {
    if (hasPixels())
        zorvan::fillPath(drawingTarget(), path.applying(toPixels()), rule, state_.fill,
                         state_.style);
}

void CGContext::stroke(const CGPath& path) {
    CGPath kept = std::exchange(path_, path.applying(toPixels()));
    strokePath();
    path_ = std::move(kept);
}

void CGContext::fill(const CGRect& rect) { fill(rectangle(rect)); }

void CGContext::stroke(const CGRect& rect) { stroke(rectangle(rect)); }

void CGContext::fillEllipse(const CGRect& rect) { fill(ellipse(rect)); }

void CGContext::clear(const CGRect& rect) {
    DrawingStyle style = state_.style;
    style.operation = NSCompositingOperation::clear;
    if (hasPixels())
        zorvan::fillPath(drawingTarget(), pathOf(rect), CGPathFillRule::winding, PaintColor{},
                         style);
}

void CGContext::drawGradient(GradientPaint paint, const CGPath& area, const CGGradient& gradient) {
    if (!hasPixels())
        return;
    paint.stops = stopsOf(gradient);
    paint.toTarget = toPixels();
    zorvan::fillPath(drawingTarget(), area.applying(paint.toTarget), CGPathFillRule::winding, paint,
                     state_.style);
}

void CGContext::drawLinearGradient(const CGGradient& gradient, CGPoint start, CGPoint end,
                                   CGGradientDrawingOptions options) {
    const double length = std::hypot(end.x - start.x, end.y - start.y);
    if (!(length > 0) || !std::isfinite(length))
        return;
    drawGradient({{}, start, end}, stripOf(start, end, options, boundingBoxOfClipPath()), gradient);
}

void CGContext::drawRadialGradient(const CGGradient& gradient, CGPoint center, double radius,
                                   CGGradientDrawingOptions options) {
    if (!(radius > 0) || !std::isfinite(radius))
        return;
    const CGPath area = has(options, CGGradientDrawingOptions::drawsAfterEndLocation)
                            ? rectangle(boundingBoxOfClipPath())
                            : ellipse(CGRect({.center = center, .square = radius * 2}));
    drawGradient({{}, center, center, radius}, area, gradient);
}

void CGContext::fill(const CGRect& rect, const CGGradient& gradient, CGPoint start, CGPoint end) {
    useTemporaryGState([&] {
        clipToPixels(pathOf(rect), CGPathFillRule::winding);
        // On both sides, because the edges of the rectangle are those of the clip already.
        drawLinearGradient(gradient, start, end, CGGradientDrawingOptions::drawsOnBothSides);
    });
}

void CGContext::drawVerticalGradient(const CGGradient& gradient, const CGRect& rect) {
    fill(rect, gradient, rect.bottomCenter(), rect.topCenter());
}

void CGContext::drawHorizontalGradient(const CGGradient& gradient, const CGRect& rect) {
    fill(rect, gradient, rect.middleLeft(), rect.middleRight());
}

void CGContext::drawString(std::string_view text, const CGRect& rect,
                           const AttributeDictionary& attributes) {
    if (!hasPixels() || rect.isEmpty())
        return;
    const CGAffineTransform fromTop(1, 0, 0, -1, rect.minX(), rect.maxY());
    drawText(drawingTarget(), NSAttributedString(text, attributes),
             CGRect(0, 0, rect.width(), rect.height()), TextOverflow::leavesLinesOut,
             fromTop.concatenating(toPixels()), state_.style);
}

void CGContext::drawString(std::string_view text, const CGPath& path,
                           const AttributeDictionary& attributes) {
    if (!hasPixels())
        return;
    const CGAffineTransform fromTop(1, 0, 0, -1, 0, 0);
    drawText(drawingTarget(), NSAttributedString(text, attributes), path.applying(fromTop),
             fromTop.concatenating(toPixels()), state_.style);
}

} // namespace zorvan
