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
    using Pointer = std::shared_ptr<NSBezierPath>;

    struct Rect {
        Required<CGRect> rect;
    };
    struct RoundedRect {
        Required<CGRect> roundedRect;
        Required<double> xRadius;
        Required<double> yRadius;
    };
    struct OvalInRect {
        Required<CGRect> ovalIn;
    };

    /// Empty.
    static Pointer create() { return create(CGPath()); }
    static Pointer create(CGPath path) {
        return std::make_shared<NSBezierPath>(Key{}, std::move(path));
    }
    static Pointer create(Rect argument);
    static Pointer create(RoundedRect argument);
    static Pointer create(OvalInRect argument);

    /// Continuing a path that has not begun stops the program with "The path has no current
    /// point.".
    void move(CGPoint to) { path_.moveTo(to); }
    void line(CGPoint to);
    void curve(CGPoint to, CGPoint controlPoint1, CGPoint controlPoint2);
    void relativeMove(CGPoint by);
    void relativeLine(CGPoint by);
    /// Degrees, counter-clockwise unless asked otherwise; a line leads to where the arc begins.
    void appendArc(CGPoint center, double radius, double startAngle, double endAngle,
                   bool clockwise = false);
    void appendRect(const CGRect& rect) { path_.addRect(rect); }
    void appendRoundedRect(const CGRect& rect, double xRadius, double yRadius) {
        path_.addRoundedRect(rect, xRadius, yRadius);
    }
    void appendOval(const CGRect& in) { path_.addEllipse(in); }
    void append(const NSBezierPath& path) { path_.addPath(path.path_); }
    void close() { path_.closeSubpath(); }
    void removeAllPoints() { path_ = {}; }

    /// Moves every point through the map.
    void transform(const CGAffineTransform& t) { path_ = path_.applying(t); }

    bool isEmpty() const noexcept { return path_.isEmpty(); }
    std::int64_t elementCount() const noexcept {
        return static_cast<std::int64_t>(path_.elements().size());
    }
    CGPoint currentPoint() const noexcept { return path_.currentPoint(); }
    /// Around what is drawn, without the width of lines; `null` on an empty path.
    CGRect bounds() const { return path_.boundingBox(); }
    bool contains(CGPoint point) const { return path_.contains(point, windingRule_); }
    const CGPath& cgPath() const& noexcept { return path_; }
    CGPath cgPath() && noexcept { return std::move(path_); }

    /// 1 at first; 0 is the thinnest line there is.
    double lineWidth() const noexcept { return stroke_.lineWidth; }
    void setLineWidth(double width) noexcept { stroke_.lineWidth = width; }
    CGLineCap lineCapStyle() const noexcept { return stroke_.lineCap; }
    void setLineCapStyle(CGLineCap cap) noexcept { stroke_.lineCap = cap; }
    CGLineJoin lineJoinStyle() const noexcept { return stroke_.lineJoin; }
    void setLineJoinStyle(CGLineJoin join) noexcept { stroke_.lineJoin = join; }
    double miterLimit() const noexcept { return stroke_.miterLimit; }
    void setMiterLimit(double limit) noexcept { stroke_.miterLimit = limit; }
    void setLineDash(std::vector<double> pattern, double phase) {
        stroke_.dash = std::move(pattern);
        stroke_.dashPhase = phase;
    }
    CGPathFillRule windingRule() const noexcept { return windingRule_; }
    void setWindingRule(CGPathFillRule rule) noexcept { windingRule_ = rule; }

    /// With the fill colour that is set.
    void fill() const;
    /// With the stroke colour that is set.
    void stroke() const;
    /// Keeps what is drawn from here on inside the path, too.
    void addClip() const;

    NSBezierPath(Key, CGPath path) noexcept : path_(std::move(path)) {}

private:
    CGPath path_;
    StrokeStyle stroke_;
    CGPathFillRule windingRule_ = CGPathFillRule::winding;
};

} // namespace zorvan
