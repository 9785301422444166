#pragma once

#include <zorvan/numbers-geometry/CGPoint.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/numbers-geometry/NSEdgeInsets.h>
#include <zorvan/numbers-geometry/RectAnchor.h>
#include <zorvan/platform/foundation/Required.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <utility>

namespace zorvan {

struct CGAffineTransform;

/// A rectangle; y grows upward, so its top edge is at `maxY`.
///
/// Width and height may be negative. "Stored" values are `origin` and `size` as they are; the
/// accessors `minX()` to `maxY()`, `width()` and `height()` read the standardised rectangle, whose
/// sides are not negative. Each operation says which it reads where that decides the result.
/// Equality compares the stored values.
struct CGRect {
    /// As it is stored: the corner that the sides go out from.
    CGPoint origin;
    /// As it is stored; a negative side goes left or down from the origin.
    CGSize size;

    /// A size; the rectangle stands at the origin.
    struct OfSize {
        Required<CGSize> size;
    };
    /// Two sides; the rectangle stands at the origin.
    struct WidthHeight {
        Required<double> width;  ///< As it is stored.
        Required<double> height; ///< As it is stored.
    };
    /// The side of a square at the origin.
    struct Square {
        Required<double> square;
    };
    /// The middle, and the size around it.
    struct CenterSize {
        Required<CGPoint> center; ///< Half way along both sides.
        Required<CGSize> size;    ///< A negative side puts the origin beyond the middle.
    };
    /// The middle, and the side of a square around it.
    struct CenterSquare {
        Required<CGPoint> center; ///< Half way along both sides.
        Required<double> square;  ///< A negative side puts the origin beyond the middle.
    };
    /// The four edges; in the wrong order they make a negative side.
    struct Edges {
        Required<double> left;   ///< Its x.
        Required<double> right;  ///< Its x.
        Required<double> bottom; ///< Its y.
        Required<double> top;    ///< Its y.
    };
    /// Two corners across from each other, in either order.
    struct Corners {
        Required<CGPoint> p1; ///< Any corner.
        Required<CGPoint> p2; ///< The opposite one.
    };

    constexpr CGRect() noexcept = default;
    /// What is to be stored, signs included.
    /// @{
    constexpr CGRect(CGPoint origin_, CGSize size_) noexcept : origin(origin_), size(size_) {}
    constexpr CGRect(double x, double y, double width, double height) noexcept
        : origin(x, y), size(width, height) {}
    /// @}
    /// At the origin.
    /// @{
    explicit constexpr CGRect(OfSize argument) noexcept : size(argument.size) {}
    explicit constexpr CGRect(WidthHeight argument) noexcept
        : size(argument.width, argument.height) {}
    explicit constexpr CGRect(Square argument) noexcept : size(argument.square, argument.square) {}
    /// @}
    /// Computed from what is named, nothing put in order: see the record.
    /// @{
    explicit constexpr CGRect(CenterSize argument) noexcept
        : CGRect(argument.center.value - (argument.size.value * 0.5).point(), argument.size) {}
    explicit constexpr CGRect(CenterSquare argument) noexcept
        : CGRect(argument.center.value - argument.square * 0.5,
                 CGSize(argument.square, argument.square)) {}
    explicit constexpr CGRect(Edges edges) noexcept
        : CGRect(edges.left, edges.bottom, edges.right - edges.left, edges.top - edges.bottom) {}
    /// @}
    /// Between any two opposite corners.
    explicit CGRect(Corners corners) noexcept;

    static const CGRect zero; ///< At the origin, without extent.
    /// No rectangle at all: the intersection of two that share no area. Empty, contains nothing,
    /// and neutral in unions.
    static const CGRect null;

    /// Of the stored origin.
    /// @{
    [[nodiscard]] constexpr double x() const noexcept { return origin.x; }
    [[nodiscard]] constexpr double y() const noexcept { return origin.y; }
    /// @}
    /// Of the standardised rectangle, so never negative.
    /// @{
    [[nodiscard]] constexpr double width() const noexcept { return magnitude(size.width); }
    [[nodiscard]] constexpr double height() const noexcept { return magnitude(size.height); }
    /// @}
    /// Of the standardised rectangle: its left, bottom, right and top edge, and half way between
    /// them.
    /// @{
    [[nodiscard]] constexpr double minX() const noexcept {
        return size.width < 0 ? origin.x + size.width : origin.x;
    }
    [[nodiscard]] constexpr double minY() const noexcept {
        return size.height < 0 ? origin.y + size.height : origin.y;
    }
    [[nodiscard]] constexpr double maxX() const noexcept { return minX() + width(); }
    [[nodiscard]] constexpr double maxY() const noexcept { return minY() + height(); }
    [[nodiscard]] constexpr double midX() const noexcept { return minX() + width() * 0.5; }
    [[nodiscard]] constexpr double midY() const noexcept { return minY() + height() * 0.5; }
    /// @}
    /// The same rectangle with its sides made positive by moving the origin.
    [[nodiscard]] constexpr CGRect standardized() const noexcept {
        return {minX(), minY(), width(), height()};
    }

    /// Whether it is the one that is no rectangle: a coordinate of the origin is positive infinity.
    [[nodiscard]] constexpr bool isNull() const noexcept {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        return origin.x == infinity || origin.y == infinity;
    }
    /// Whether it has no area; also when a side is NaN.
    [[nodiscard]] constexpr bool isEmpty() const noexcept {
        return isNull() || !(width() > 0 && height() > 0);
    }
    /// The minimum edges are inside, the maximum edges are not; an empty rectangle contains
    /// nothing.
    [[nodiscard]] constexpr bool contains(CGPoint p) const noexcept {
        return !isEmpty() && minX() <= p.x && p.x < maxX() && minY() <= p.y && p.y < maxY();
    }
    /// Whether the union with `other` is this rectangle; edges may coincide.
    [[nodiscard]] constexpr bool contains(const CGRect& other) const noexcept {
        return other.isNull() || (!isNull() && minX() <= other.minX() && other.maxX() <= maxX() &&
                                  minY() <= other.minY() && other.maxY() <= maxY());
    }
    /// Whether they share some area; touching edges share none.
    [[nodiscard]] bool intersects(const CGRect& other) const noexcept {
        return !intersection(other).isNull();
    }
    /// What they share, standardised; `null` when that has no area.
    [[nodiscard]] CGRect intersection(const CGRect& other) const noexcept;
    /// The smallest standardised rectangle around both, empty ones included; `null` adds nothing.
    [[nodiscard]] CGRect union_(const CGRect& other) const noexcept;
    /// Standardised, then each edge moved inward by the amount (outward by a negative one); `null`
    /// when nothing is left.
    [[nodiscard]] CGRect insetBy(double dx, double dy) const noexcept;
    /// The smallest rectangle around the transformed corners; `null` stays.
    [[nodiscard]] CGRect applying(const CGAffineTransform& t) const noexcept;

    /// Of the standardised rectangle; y grows upward, so the top is at `maxY()`.
    /// @{
    [[nodiscard]] constexpr CGPoint center() const noexcept { return {midX(), midY()}; }
    [[nodiscard]] constexpr CGPoint bottomLeft() const noexcept { return {minX(), minY()}; }
    [[nodiscard]] constexpr CGPoint bottomRight() const noexcept { return {maxX(), minY()}; }
    [[nodiscard]] constexpr CGPoint topLeft() const noexcept { return {minX(), maxY()}; }
    [[nodiscard]] constexpr CGPoint topRight() const noexcept { return {maxX(), maxY()}; }
    [[nodiscard]] constexpr CGPoint bottomCenter() const noexcept { return {midX(), minY()}; }
    [[nodiscard]] constexpr CGPoint topCenter() const noexcept { return {midX(), maxY()}; }
    [[nodiscard]] constexpr CGPoint middleLeft() const noexcept { return {minX(), midY()}; }
    [[nodiscard]] constexpr CGPoint middleRight() const noexcept { return {maxX(), midY()}; }
    /// @}
    /// The point of that name.
    [[nodiscard]] CGPoint point(RectAnchor anchor) const noexcept;
    /// The rectangle of that size centred on the anchor's point.
    [[nodiscard]] CGRect rect(RectAnchor anchor, CGSize size) const noexcept;
    /// The square with sides of that length centred on the anchor's point.
    [[nodiscard]] CGRect square(RectAnchor anchor, double edgeSize) const noexcept;

    /// Of the stored sides, so negative when one of them is.
    [[nodiscard]] constexpr double area() const noexcept { return size.area(); }
    /// The ratios read the stored origin and the standardised sides.
    /// @{
    [[nodiscard]] constexpr double whRatio() const noexcept { return width() / height(); }
    [[nodiscard]] constexpr double hwRatio() const noexcept { return height() / width(); }
    [[nodiscard]] constexpr double xwRatio() const noexcept { return x() / width(); }
    [[nodiscard]] constexpr double wxRatio() const noexcept { return width() / x(); }
    [[nodiscard]] constexpr double yhRatio() const noexcept { return y() / height(); }
    [[nodiscard]] constexpr double hyRatio() const noexcept { return height() / y(); }
    [[nodiscard]] constexpr double xyRatio() const noexcept { return x() / y(); }
    [[nodiscard]] constexpr double yxRatio() const noexcept { return y() / x(); }
    /// @}
    /// Of the standardised sides.
    [[nodiscard]] std::pair<std::int64_t, std::int64_t> roundIntWidthHeight() const noexcept {
        return {zorvan::roundInt(width()), zorvan::roundInt(height())};
    }

    /// What to put in place of the origin and the size, or to add to them.
    struct OriginSize {
        std::optional<CGPoint> origin = {}; ///< Absent: as it is.
        std::optional<CGSize> size = {};    ///< Absent: as it is.
    };
    /// What to put in place of each of the four values, or to add to it; absent, it stays.
    struct XYWH {
        std::optional<double> x = {}; ///< For that of the origin.
        std::optional<double> y = {}; ///< For that of the origin.
        std::optional<double> w = {}; ///< For the width.
        std::optional<double> h = {}; ///< For the height.
    };
    /// What to put in place of the sides.
    struct Sides {
        std::optional<double> width = {};  ///< Absent: the standardised one.
        std::optional<double> height = {}; ///< Absent: the standardised one.
    };
    /// A width to take; the left edge stays.
    struct LeftKept {
        Required<double> lw;
    };
    /// A width to take; the right edge stays.
    struct RightKept {
        Required<double> rw;
    };
    /// A height to take; the bottom edge stays.
    struct BottomKept {
        Required<double> bh;
    };
    /// A height to take; the top edge stays.
    struct TopKept {
        Required<double> th;
    };
    /// A width to take; the middle stays.
    struct CenterXKept {
        Required<double> cw;
    };
    /// A height to take; the middle stays.
    struct CenterYKept {
        Required<double> ch;
    };
    /// An absent part is kept.
    [[nodiscard]] constexpr CGRect with(OriginSize parts) const noexcept {
        return {parts.origin.value_or(origin), parts.size.value_or(size)};
    }
    /// An absent coordinate is the stored one, an absent side the standardised one:
    /// `rect.with({.x = 1, .h = 5})`.
    [[nodiscard]] constexpr CGRect with(XYWH values) const noexcept {
        return {values.x.value_or(x()), values.y.value_or(y()), values.w.value_or(width()),
                values.h.value_or(height())};
    }
    /// The origin as it is stored; an absent side is the standardised one.
    [[nodiscard]] constexpr CGRect with(Sides sides) const noexcept {
        return with(XYWH{.w = sides.width, .h = sides.height});
    }
    /// Another width, the left edge kept; the height is standardised.
    [[nodiscard]] constexpr CGRect with(LeftKept width) const noexcept {
        return {x(), y(), width.lw, height()};
    }
    /// Another width, the stored right edge (`x + w`) and height kept.
    [[nodiscard]] constexpr CGRect with(RightKept width) const noexcept {
        return {x() + size.width - width.rw, y(), width.rw, size.height};
    }
    /// Another height, the bottom edge kept; the width is standardised.
    [[nodiscard]] constexpr CGRect with(BottomKept height) const noexcept {
        return {x(), y(), width(), height.bh};
    }
    /// Another height, the stored top edge (`y + h`) and width kept.
    [[nodiscard]] constexpr CGRect with(TopKept height) const noexcept {
        return {x(), y() + size.height - height.th, size.width, height.th};
    }
    /// Another width, grown or shrunk equally at both sides of the standardised width.
    [[nodiscard]] constexpr CGRect with(CenterXKept width) const noexcept {
        return {x() + (this->width() - width.cw) * 0.5, y(), width.cw, size.height};
    }
    /// Another height, grown or shrunk equally at both ends of the standardised height.
    [[nodiscard]] constexpr CGRect with(CenterYKept height) const noexcept {
        return {x(), y() + (this->height() - height.ch) * 0.5, size.width, height.ch};
    }

    /// Amounts added to the stored values; an absent one adds nothing.
    /// @{
    [[nodiscard]] constexpr CGRect adding(OriginSize amounts) const noexcept {
        return {origin + amounts.origin.value_or(CGPoint()),
                size + amounts.size.value_or(CGSize())};
    }
    [[nodiscard]] constexpr CGRect adding(XYWH amounts) const noexcept {
        return {x() + amounts.x.value_or(0), y() + amounts.y.value_or(0),
                size.width + amounts.w.value_or(0), size.height + amounts.h.value_or(0)};
    }
    /// @}

    /// How far to move the origin.
    struct Origin {
        Required<CGPoint> origin;
    };
    /// How far to move the left edge.
    struct X {
        Required<double> x;
    };
    /// How far to move the bottom edge.
    struct Y {
        Required<double> y;
    };
    /// The stored origin moved, the far corner kept: `rect.shifting({.origin = {2, 3}})`.
    /// @{
    [[nodiscard]] constexpr CGRect shifting(Origin by) const noexcept {
        return {origin + by.origin, size - by.origin.value.size()};
    }
    [[nodiscard]] constexpr CGRect shifting(X by) const noexcept {
        return shifting(Origin{{by.x, 0.0}});
    }
    [[nodiscard]] constexpr CGRect shifting(Y by) const noexcept {
        return shifting(Origin{{0.0, by.y}});
    }
    /// @}

    /// Each of the four stored values by itself; halves round away from zero.
    /// @{
    [[nodiscard]] CGRect round() const noexcept { return {origin.round(), size.round()}; }
    [[nodiscard]] CGRect ceil() const noexcept { return {origin.ceil(), size.ceil()}; }
    [[nodiscard]] CGRect floor() const noexcept { return {origin.floor(), size.floor()}; }
    /// @}
    /// The four stored values multiplied: the origin moves as well.
    /// @{
    [[nodiscard]] constexpr CGRect scaledBy(double s) const noexcept { return scaledBy(s, s); }
    [[nodiscard]] constexpr CGRect scaledBy(double x, double y) const noexcept {
        return {origin.x * x, origin.y * y, size.width * x, size.height * y};
    }
    [[nodiscard]] constexpr CGRect scaledBy(CGPoint factors) const noexcept {
        return scaledBy(factors.x, factors.y);
    }
    /// @}

    /// The fraction of each side to take away: 0.2 is a fifth.
    struct Percent {
        Required<double> percent;
    };
    /// How far each of the four edges moves inward.
    struct Delta {
        Required<double> delta;
    };
    /// How far the vertical and the horizontal edges move inward.
    struct Deltas {
        Required<double> dx; ///< The left and right edges.
        Required<double> dy; ///< The bottom and top edges.
    };
    /// `insetBy` half of that fraction of each stored side: 0.2 removes a fifth of a positive side.
    /// A negative side is made longer by as much.
    [[nodiscard]] CGRect shrunkBy(Percent by) const noexcept {
        return insetBy(by.percent * 0.5 * size.width, by.percent * 0.5 * size.height);
    }
    /// `insetBy` those amounts; a negative one grows the rectangle.
    /// @{
    [[nodiscard]] CGRect shrunkBy(Delta by) const noexcept { return insetBy(by.delta, by.delta); }
    [[nodiscard]] CGRect shrunkBy(Deltas by) const noexcept { return insetBy(by.dx, by.dy); }
    /// @}

    /// The stored size kept, in the middle of `bounds`.
    [[nodiscard]] constexpr CGRect centered(const CGRect& bounds) const noexcept {
        return size.centered(bounds);
    }
    /// Scaled, at the same ratio of the stored sides, to just fit in `bounds`, in its middle.
    [[nodiscard]] constexpr CGRect fitting(const CGRect& bounds) const noexcept {
        return size.fitting(bounds);
    }
    /// Scaled, at the same ratio of the stored sides, to just cover `bounds`, about its middle.
    [[nodiscard]] constexpr CGRect filling(const CGRect& bounds) const noexcept {
        return size.filling(bounds);
    }
    /// The largest rectangle of that ratio of width to height inside this one, in its middle.
    [[nodiscard]] constexpr CGRect innerFittingRect(double ratio) const noexcept {
        return size.innerFittingSize(ratio).centered(*this);
    }
    /// The smallest rectangle of that ratio of width to height that covers this one, about its
    /// middle.
    [[nodiscard]] constexpr CGRect innerFillingRect(double ratio) const noexcept {
        return size.innerFillingSize(ratio).centered(*this);
    }
    /// The square on the shorter standardised side, in the middle of the longer one.
    [[nodiscard]] constexpr CGRect innerSquare() const noexcept {
        return height() < width() ? with(CenterXKept{height()}).with(BottomKept{height()})
                                  : with(CenterYKept{width()}).with(LeftKept{width()});
    }
    /// The square on the longer standardised side, about the middle of the shorter one.
    [[nodiscard]] constexpr CGRect outerSquare() const noexcept {
        return width() < height() ? with(CenterXKept{height()}).with(BottomKept{height()})
                                  : with(CenterYKept{width()}).with(LeftKept{width()});
    }
    /// The point of the rectangle, edges included, that is nearest to `p`.
    [[nodiscard]] constexpr CGPoint minMax(CGPoint p) const noexcept {
        return {std::min(std::max(p.x, minX()), maxX()), std::min(std::max(p.y, minY()), maxY())};
    }

    /// Moves the stored origin.
    constexpr void moveBy(CGPoint by) noexcept { origin += by; }
    /// Changes the rectangle into what the form that ends in -ed or -ing gives (`scaledBy`,
    /// `shrunkBy`, `centered`, `fitting`, `filling`, `applying`).
    /// @{
    constexpr void scaleBy(double s) noexcept { *this = scaledBy(s); }
    constexpr void scaleBy(double x, double y) noexcept { *this = scaledBy(x, y); }
    constexpr void scaleBy(CGPoint factors) noexcept { *this = scaledBy(factors); }
    void shrinkBy(Percent by) noexcept { *this = shrunkBy(by); }
    void shrinkBy(Delta by) noexcept { *this = shrunkBy(by); }
    void shrinkBy(Deltas by) noexcept { *this = shrunkBy(by); }
    constexpr void center(const CGRect& bounds) noexcept { *this = centered(bounds); }
    constexpr void fit(const CGRect& bounds) noexcept { *this = fitting(bounds); }
    constexpr void fill(const CGRect& bounds) noexcept { *this = filling(bounds); }
    void apply(const CGAffineTransform& t) noexcept { *this = applying(t); }
    /// @}
    /// The stored edges moved inward by the insets.
    constexpr void apply(const NSEdgeInsets& insets) noexcept {
        origin += CGPoint(insets.left, insets.bottom);
        size -= CGSize(insets.left + insets.right, insets.bottom + insets.top);
    }
    /// Per axis: a point before the origin becomes the new origin, the far edge kept; a point
    /// beyond the origin becomes the new far edge, even when it lies inside the rectangle.
    void expand(CGPoint to) noexcept;
    /// Drags a handle: the edges of `anchor` move to the point, the others stay. The result has
    /// sides that are not negative; returned is the handle that the dragged one has become when the
    /// rectangle turned inside out.
    RectAnchor move(RectAnchor anchor, CGPoint to) noexcept;

    /// Within the tolerance in each of the four stored values.
    [[nodiscard]] constexpr bool overlap(const CGRect& other, double tolerance) const noexcept {
        return origin.overlap(other.origin, tolerance) && size.overlap(other.size, tolerance);
    }
    /// Similar in each of the four stored values.
    [[nodiscard]] bool isSimilarTo(const CGRect& other, std::int64_t places) const noexcept {
        return origin.isSimilarTo(other.origin, places) && size.isSimilarTo(other.size, places);
    }

    friend constexpr bool operator==(const CGRect&, const CGRect&) = default;

    /// The rectangle itself.
    friend constexpr CGRect operator+(const CGRect& r) noexcept { return r; }
    /// Negates the four stored values.
    friend constexpr CGRect operator-(const CGRect& r) noexcept { return {-r.origin, -r.size}; }
    /// Multiplies the stored origin and the standardised sides.
    /// @{
    friend constexpr CGRect operator*(const CGRect& r, double s) noexcept {
        return {r.x() * s, r.y() * s, r.width() * s, r.height() * s};
    }
    friend constexpr CGRect operator*(double s, const CGRect& r) noexcept { return r * s; }
    /// @}
    /// Multiplies the four stored values.
    constexpr CGRect& operator*=(double s) noexcept { return *this = scaledBy(s); }

private:
    static constexpr double magnitude(double side) noexcept { return side <= 0 ? 0 - side : side; }
};

inline constexpr CGRect CGRect::zero{};
inline constexpr CGRect CGRect::null{std::numeric_limits<double>::infinity(),
                                     std::numeric_limits<double>::infinity(), 0, 0};

constexpr CGRect CGSize::rect() const noexcept { return {CGPoint(), *this}; }

constexpr CGRect CGSize::centered(const CGRect& bounds) const noexcept {
    return {bounds.x() + (bounds.width() - width) * 0.5,
            bounds.y() + (bounds.height() - height) * 0.5, width, height};
}
constexpr CGRect CGSize::fitting(const CGRect& bounds) const noexcept {
    return fitting(bounds.size).centered(bounds);
}
constexpr CGRect CGSize::filling(const CGRect& bounds) const noexcept {
    return filling(bounds.size).centered(bounds);
}

} // namespace zorvan

/// Of the standardised edges, so equal rectangles have equal hashes.
template <>
struct std::hash<zorvan::CGRect> {
    std::size_t operator()(const zorvan::CGRect& rect) const noexcept;
};

#include <zorvan/numbers-geometry/CGAffineTransform.h>
