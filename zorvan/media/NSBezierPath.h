#pragma once

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/foundation/Required.h>
#include <zorvan/platform/graphics/CGPath.h>
#include <zorvan/platform/graphics/DrawingTarget.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

/// A path that draws itself, with the form of its lines, in the current graphics context; nothing
/// is drawn when there is none.
class NSBezierPath {
    struct Key {};

public:
    using Pointer = std::shared_ptr<NSBezierPath>; ///< How a path is held.

    /// A rectangle.
    struct Rect {
        Required<CGRect> rect;
    };
    /// A rectangle with rounded corners.
    struct RoundedRect {
        Required<CGRect> roundedRect; ///< Around the path.
        /// Held between 0 and half of the sides.
        /// @{
        Required<double> xRadius;
        Required<double> yRadius;
        /// @}
    };
    /// The rectangle around an ellipse.
    struct OvalInRect {
        Required<CGRect> ovalIn;
    };

    /// Empty.
    static Pointer create() { return create(CGPath()); }
    /// With one closed part to begin with, or those of the path.
    /// @{
    static Pointer create(CGPath path) {
        return std::make_shared<NSBezierPath>(Key{}, std::move(path));
    }
    static Pointer create(Rect argument);
    static Pointer create(RoundedRect argument);
    static Pointer create(OvalInRect argument);
    /// @}

    /// To a place, or by so much from the current point. Continuing a path that has not begun stops
    /// the program with "The path has no current point.".
    /// @{
    void move(CGPoint to) { path_.moveTo(to); }
    void line(CGPoint to);
    void curve(CGPoint to, CGPoint controlPoint1, CGPoint controlPoint2);
    void relativeMove(CGPoint by);
    void relativeLine(CGPoint by);
    /// @}
    /// Degrees, counter-clockwise unless asked otherwise; a line leads to where the arc begins.
    void appendArc(CGPoint center, double radius, double startAngle, double endAngle,
                   bool clockwise = false);
    /// Closed parts of their own; a path as it is. `close` leads back to where the part began.
    /// @{
    void appendRect(const CGRect& rect) { path_.addRect(rect); }
    void appendRoundedRect(const CGRect& rect, double xRadius, double yRadius) {
        path_.addRoundedRect(rect, xRadius, yRadius);
    }
    void appendOval(const CGRect& in) { path_.addEllipse(in); }
    void append(const NSBezierPath& path) { path_.addPath(path.path_); }
    void close() { path_.closeSubpath(); }
    /// @}
    /// Leaves an empty path with the form of its lines.
    void removeAllPoints() { path_ = {}; }

    /// Moves every point through the map.
    void transform(const CGAffineTransform& t) { path_ = path_.applying(t); }

    /// Whether nothing has been added.
    bool isEmpty() const noexcept { return path_.isEmpty(); }
    /// How many moves, lines, curves and closings there are.
    std::int64_t elementCount() const noexcept {
        return static_cast<std::int64_t>(path_.elements().size());
    }
    /// Where the next line begins; the zero point on an empty path.
    CGPoint currentPoint() const noexcept { return path_.currentPoint(); }
    /// Around what is drawn, without the width of lines; `null` on an empty path.
    CGRect bounds() const { return path_.boundingBox(); }
    /// Whether the point lies inside by the winding rule; open parts count as closed.
    bool contains(CGPoint point) const { return path_.contains(point, windingRule_); }
    /// The path alone, without the form of its lines.
    /// @{
    const CGPath& cgPath() const& noexcept { return path_; }
    CGPath cgPath() && noexcept { return std::move(path_); }
    /// @}

    /// 1 at first; 0 is the thinnest line there is.
    /// @{
    double lineWidth() const noexcept { return stroke_.lineWidth; }
    void setLineWidth(double width) noexcept { stroke_.lineWidth = width; }
    /// @}
    /// Butt ends, mitred corners and a limit of 10 at first.
    /// @{
    CGLineCap lineCapStyle() const noexcept { return stroke_.lineCap; }
    void setLineCapStyle(CGLineCap cap) noexcept { stroke_.lineCap = cap; }
    CGLineJoin lineJoinStyle() const noexcept { return stroke_.lineJoin; }
    void setLineJoinStyle(CGLineJoin join) noexcept { stroke_.lineJoin = join; }
    double miterLimit() const noexcept { return stroke_.miterLimit; }
    void setMiterLimit(double limit) noexcept { stroke_.miterLimit = limit; }
    /// @}
    /// Lengths drawn and left out in turn, begun `phase` into them; none for a whole line.
    void setLineDash(std::vector<double> pattern, double phase) {
        stroke_.dash = std::move(pattern);
        stroke_.dashPhase = phase;
    }
    /// What lies inside; `winding` at first.
    /// @{
    CGPathFillRule windingRule() const noexcept { return windingRule_; }
    void setWindingRule(CGPathFillRule rule) noexcept { windingRule_ = rule; }
    /// @}

    /// With the fill colour that is set.
    void fill() const;
    /// With the stroke colour that is set.
    void stroke() const;
    /// Keeps what is drawn from here on inside the path, too.
    void addClip() const;

    /// For `create`.
    NSBezierPath(Key, CGPath path) noexcept : path_(std::move(path)) {}

private:
    CGPath path_;
    StrokeStyle stroke_;
    CGPathFillRule windingRule_ = CGPathFillRule::winding;
};

} // namespace zorvan
