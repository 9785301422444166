#pragma once

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGRect.h>

#include <array>
#include <vector>

namespace zorvan {

/// What of the plane lies inside a path: where it winds around, or where a ray crosses it an odd
/// number of times.
enum class CGPathFillRule { winding = 0, evenOdd = 1 };

/// Lines and curves: what is filled, stroked and clipped to. A value.
///
/// Coordinates that are no finite numbers leave the operation without effect. An operation that
/// continues a path does nothing on one that has no current point.
class CGPath {
public:
    /// What an element does. There is no 2: a curve with one control point is kept as one with two.
    enum class ElementType {
        moveToPoint = 0,
        addLineToPoint = 1,
        addCurveToPoint = 3,
        closeSubpath = 4
    };
    /// A curve has two control points and its end; a move and a line have their end first; closing
    /// has none.
    struct Element {
        ElementType type;              ///< What it does.
        std::array<CGPoint, 3> points; ///< As many as it has; the others are the zero point.

        friend bool operator==(const Element&, const Element&) = default;
    };

    /// All of it, in order.
    /// @{
    const std::vector<Element>& elements() const& noexcept { return elements_; }
    std::vector<Element> elements() && noexcept { return std::move(elements_); }
    /// @}
    /// Whether nothing has been added.
    bool isEmpty() const noexcept { return elements_.empty(); }
    /// Where the next line begins; the zero point on an empty path.
    CGPoint currentPoint() const noexcept { return current_; }

    /// Begins a new part.
    void moveTo(CGPoint point);
    /// A line, or a curve by its control points, on from the current point.
    /// @{
    void addLineTo(CGPoint point);
    void addCurveTo(CGPoint control1, CGPoint control2, CGPoint end);
    void addQuadCurveTo(CGPoint control, CGPoint end);
    /// @}
    /// A line back to where the part began, which is the current point then.
    void closeSubpath();

    /// A closed part of its own, from the bottom left corner on counter-clockwise.
    void addRect(const CGRect& rect);
    /// Corners are quarters of an ellipse, with radii held between 0 and half of the sides.
    void addRoundedRect(const CGRect& rect, double radiusX, double radiusY);
    /// The ellipse that touches the sides of the rectangle.
    void addEllipse(const CGRect& rect);
    /// An arc from one angle to another, in radians and counter-clockwise unless asked otherwise
    /// (where y grows upward). A line leads to where it begins when there is a current point.
    void addArc(CGPoint center, double radius, double startAngle, double endAngle,
                bool clockwise = false);
    /// The parts of the other path, after those there are.
    void addPath(const CGPath& path);

    /// Around all points, those that control curves among them; `null` when there are none.
    CGRect controlPointBoundingBox() const noexcept;
    /// Around what is drawn, to within a hundredth of a unit; `null` when there is nothing.
    CGRect boundingBox() const;

    /// Every point moved through the map.
    [[nodiscard]] CGPath applying(const CGAffineTransform& t) const;

    /// The closed polygons that the path follows, curves replaced by lines that stay within
    /// `tolerance` of them.
    std::vector<std::vector<CGPoint>> polygons(double tolerance = 0.1) const;
    /// Whether the point lies inside. Parts that are open count as closed.
    bool contains(CGPoint point, CGPathFillRule rule = CGPathFillRule::winding) const;

    friend bool operator==(const CGPath&, const CGPath&) = default;

private:
    void add(ElementType type, CGPoint a = {}, CGPoint b = {}, CGPoint c = {});

    std::vector<Element> elements_;
    CGPoint current_;
    CGPoint start_;
};

} // namespace zorvan
