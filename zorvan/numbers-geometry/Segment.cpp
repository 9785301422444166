#include <zorvan/numbers-geometry/Segment.h>

#include <algorithm>
#include <cmath>

namespace zorvan {

namespace {

constexpr double nearlyZero = 0.00001;

double cross(CGPoint u, CGPoint v) noexcept { return u.x * v.y - u.y * v.x; }

} // namespace

CGPoint Segment::normal() const noexcept {
    const double l = length();
    return l == 0 ? CGPoint() : CGPoint((start.y - end.y) / l, (end.x - start.x) / l);
}

bool Segment::contains(CGPoint p) const noexcept {
    const double area = 0.5 * cross(p - start, end - start);
    return std::round(area * 1e6) == 0 && boundingRect().contains(p);
}

Segment::Distance Segment::distance(CGPoint from) const noexcept {
    const CGPoint d = end - start;
    const double l = d.length();
    if (l == 0)
        return {0, 0};
    const double t = (from - start).dotMult(d) / (l * l);
    return {from.distance(start + t * d), t};
}

std::optional<CGPoint> Segment::intersects(const Segment& other) const noexcept {
    const CGPoint r = end - start;
    const CGPoint s = other.end - other.start;
    const double denominator = cross(r, s);
    if (!(std::fabs(denominator) > nearlyZero))
        return std::nullopt;
    const double tn = cross(s, start - other.start);
    const double un = cross(r, start - other.start);
    const auto isOn = [denominator](double n) {
        return denominator > 0 ? 0 <= n && n <= denominator : denominator < n && n < 0;
    };
    if (!isOn(tn) || !isOn(un))
        return std::nullopt;
    return start + r * (tn / denominator);
}

std::optional<CGPoint> Segment::intersects(Horizontal line) const noexcept {
    const double y = line.horizontal;
    const double low = std::min(start.y, end.y);
    const double high = std::max(start.y, end.y);
    if ((low > y && std::fabs(y - low) > nearlyZero) ||
        (high < y && std::fabs(y - high) > nearlyZero))
        return std::nullopt;
    if (start.x == end.x || start.y == end.y)
        return CGPoint(start.x, y);
    return CGPoint(start.x + (y - start.y) / (deltaY() / deltaX()), y);
}

std::optional<Segment::Intersection>
Segment::findIntersection(const Segment& other) const noexcept {
    const std::optional<CGPoint> point = intersects(other);
    if (!point)
        return std::nullopt;
    return Intersection{*point, parameter(*point), other.parameter(*point)};
}

} // namespace zorvan
