#pragma once

#include <zorvan/numbers-geometry/CGPoint.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/foundation/Required.h>

#include <cstdint>
#include <optional>

namespace zorvan {

/// A straight path from `start` to `end`.
struct Segment {
    CGPoint start; ///< Where it begins.
    CGPoint end;   ///< Where it ends; may be the start.

    constexpr Segment() noexcept = default;
    /// From the first point to the second.
    constexpr Segment(CGPoint start_, CGPoint end_) noexcept : start(start_), end(end_) {}

    static const Segment zero; ///< From the origin to itself.

    /// From the start to the end; negative to the left or downward.
    /// @{
    [[nodiscard]] constexpr double deltaX() const noexcept {
        return detail::settled(end.x) - detail::settled(start.x);
    }
    [[nodiscard]] constexpr double deltaY() const noexcept {
        return detail::settled(end.y) - detail::settled(start.y);
    }
    /// @}
    /// Never negative.
    [[nodiscard]] double length() const noexcept { return (end - start).length(); }
    /// Half way between the ends.
    [[nodiscard]] constexpr CGPoint midpoint() const noexcept { return point(0.5); }
    /// The start for 0, the end for 1, and on in proportion beyond.
    [[nodiscard]] constexpr CGPoint point(double t) const noexcept {
        return start + (end - start) * t;
    }
    /// The distance of `p` from the start over the length: no projection, and never negative.
    [[nodiscard]] double parameter(CGPoint p) const noexcept {
        return (p - start).length() / length();
    }
    /// The smallest rectangle around both ends; without width or height when the segment is
    /// vertical or horizontal.
    /// @{
    [[nodiscard]] CGRect boundingRect() const noexcept { return CGRect({.p1 = start, .p2 = end}); }
    [[nodiscard]] CGRect bounds() const noexcept { return boundingRect(); }
    /// @}
    /// The direction turned a quarter turn counter-clockwise, of length 1; `(0, 0)` when the
    /// segment has no length.
    [[nodiscard]] CGPoint normal() const noexcept;
    /// The same path the other way.
    [[nodiscard]] constexpr Segment reversed() const noexcept { return {end, start}; }

    /// The start to take.
    struct Start {
        Required<CGPoint> start;
    };
    /// The end to take.
    struct End {
        Required<CGPoint> end;
    };
    /// That end moved, the other one kept.
    /// @{
    [[nodiscard]] constexpr Segment with(Start point) const noexcept { return {point.start, end}; }
    [[nodiscard]] constexpr Segment with(End point) const noexcept { return {start, point.end}; }
    /// @}

    /// By exact comparison, in this direction or in the other.
    /// @{
    [[nodiscard]] constexpr bool isEqualToSegment(const Segment& other) const noexcept {
        return *this == other;
    }
    [[nodiscard]] constexpr bool isEqualToReversedSegment(const Segment& other) const noexcept {
        return *this == other.reversed();
    }
    /// @}
    /// Whether the ends, in this direction or with `other` reversed, differ by at most `tolerance`
    /// in each coordinate.
    /// @{
    [[nodiscard]] constexpr bool overlap(const Segment& other, double tolerance) const noexcept {
        return start.overlap(other.start, tolerance) && end.overlap(other.end, tolerance);
    }
    [[nodiscard]] constexpr bool overlapReversed(const Segment& other,
                                                 double tolerance) const noexcept {
        return overlap(other.reversed(), tolerance);
    }
    /// @}
    /// Whether the ends, in this direction or with `other` reversed, round to the same values at
    /// that many decimal places.
    /// @{
    [[nodiscard]] bool isSimilarTo(const Segment& other, std::int64_t places) const noexcept {
        return start.isSimilarTo(other.start, places) && end.isSimilarTo(other.end, places);
    }
    [[nodiscard]] bool isSimilarToReversed(const Segment& other,
                                           std::int64_t places) const noexcept {
        return isSimilarTo(other.reversed(), places);
    }
    /// @}
    /// Whether the ends are similar.
    [[nodiscard]] bool isPointy(std::int64_t places) const noexcept {
        return start.isSimilarTo(end, places);
    }
    /// Whether the slopes differ by at most the tolerance; always when either segment spans no more
    /// than the tolerance in x.
    [[nodiscard]] constexpr bool isColinearTo(const Segment& other,
                                              double tolerance) const noexcept {
        return zorvan::overlap(deltaX(), 0, tolerance) ||
               zorvan::overlap(other.deltaX(), 0, tolerance) ||
               zorvan::overlap(deltaY() / deltaX(), other.deltaY() / other.deltaX(), tolerance);
    }
    /// Whether the point is in line with the segment, to 6 places of the triangle's area, and
    /// inside `boundingRect()`: so never for a horizontal or vertical segment, nor for the upper
    /// and right edges.
    [[nodiscard]] bool contains(CGPoint p) const noexcept;

    /// How far a point lies from the line through the segment.
    struct Distance {
        double value; ///< Never negative.
        double param; ///< Where on the line: 0 at the start, 1 at the end.

        friend constexpr bool operator==(const Distance&, const Distance&) = default;
    };
    /// To the infinite line through the segment, and where on it the nearest point lies (0 at the
    /// start, 1 at the end). Both 0 when the segment has no length.
    [[nodiscard]] Distance distance(CGPoint from) const noexcept;

    /// Where the segments meet; absent when they do not, or are parallel or nearly so. A meeting at
    /// an end point counts when `other` turns counter-clockwise from this one, and not otherwise.
    [[nodiscard]] std::optional<CGPoint> intersects(const Segment& other) const noexcept;

    /// The y of a horizontal line.
    struct Horizontal {
        Required<double> horizontal;
    };
    /// Where the segment meets the horizontal line at that y, give or take 0.00001; a horizontal
    /// segment meets it at its start.
    [[nodiscard]] std::optional<CGPoint> intersects(Horizontal line) const noexcept;

    /// Where two segments meet.
    struct Intersection {
        CGPoint point; ///< On both of them.
        double param1; ///< the distance from this segment's start, over its length
        double param2; ///< the same on the other segment

        friend constexpr bool operator==(const Intersection&, const Intersection&) = default;
    };
    /// As `intersects`, with the place on either segment.
    [[nodiscard]] std::optional<Intersection> findIntersection(const Segment& other) const noexcept;

    friend constexpr bool operator==(const Segment&, const Segment&) = default;
};

inline constexpr Segment Segment::zero{};

} // namespace zorvan
