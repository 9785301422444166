#include <zorvan/platform/graphics/internal/nearPath.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace zorvan {

namespace {

/// In pixels from a tile; Cairo goes wrong at some four times that from the sides of the largest.
constexpr double farthest = 1 << 14;
/// Differences of such numbers, and their quotients, are finite.
constexpr double largest = 1e150;

struct Bounds {
    double left, top, right, bottom;

    static Bounds of(const CGRect& rect, double margin = 0) noexcept {
        return {rect.minX() - margin, rect.minY() - margin, rect.maxX() + margin,
                rect.maxY() + margin};
    }
    bool hold(CGPoint p) const noexcept {
        return p.x >= left && p.x <= right && p.y >= top && p.y <= bottom;
    }
    CGPoint held(CGPoint p) const noexcept {
        return {std::clamp(p.x, left, right), std::clamp(p.y, top, bottom)};
    }
};

CGPoint mixed(CGPoint a, CGPoint b, double t) noexcept {
    // From the nearer end, since the other may have lost the digits.
    return t < 0.5 ? a + (b - a) * t : b + (a - b) * (1 - t);
}

CGPoint middle(CGPoint a, CGPoint b) noexcept { return (a + b) / 2; }

/// A part of a path, curves replaced by lines.
struct Line {
    std::vector<CGPoint> points;
    bool isClosed = false; // by a line to the first point, which is the last one as well
};

using Curve = std::array<CGPoint, 4>;

bool isFlat(const Curve& p) noexcept {
    constexpr double tolerance = 0.05;
    const CGPoint a = p[0] - 2 * p[1] + p[2], b = p[1] - 2 * p[2] + p[3];
    return 0.75 * std::max(a.length(), b.length()) <= tolerance;
}

bool misses(const Curve& p, const Bounds& area) noexcept {
    const auto [left, right] = std::minmax({p[0].x, p[1].x, p[2].x, p[3].x});
    const auto [top, bottom] = std::minmax({p[0].y, p[1].y, p[2].y, p[3].y});
    return right < area.left || left > area.right || bottom < area.top || top > area.bottom;
}

/// A curve that misses the area may as well be a line, which misses it too, on the same side.
void addCurve(Line& line, const Curve& p, const Bounds& area, int depth) {
    if (depth == 0 || misses(p, area) || isFlat(p))
        return line.points.push_back(p[3]);
    const CGPoint a = middle(p[0], p[1]), b = middle(p[1], p[2]), c = middle(p[2], p[3]);
    const CGPoint ab = middle(a, b), bc = middle(b, c), on = middle(ab, bc);
    addCurve(line, {p[0], a, ab, on}, area, depth - 1);
    addCurve(line, {on, bc, c, p[3]}, area, depth - 1);
}

std::vector<Line> linesOf(const CGPath& path, const Bounds& area) {
    using Type = CGPath::ElementType;
    constexpr Bounds all{-largest, -largest, largest, largest};
    constexpr int deepest = 32;
    std::vector<Line> lines;
    for (const auto& [type, points] : path.elements()) {
        const CGPoint a = all.held(points[0]);
        if (type == Type::moveToPoint) {
            lines.push_back({{a}});
            continue;
        }
        if (lines.back().isClosed)
            lines.push_back({{lines.back().points.front()}});
        Line& line = lines.back();
        if (type == Type::addLineToPoint)
            line.points.push_back(a);
        else if (type == Type::addCurveToPoint)
            addCurve(line, {line.points.back(), a, all.held(points[1]), all.held(points[2])}, area,
                     deepest);
        else
            line.points.push_back(line.points.front());
        line.isClosed = type == Type::closeSubpath;
    }
    return lines;
}

/// On the way from `a` to `b`, where it crosses the sides of the area, in order.
std::vector<double> crossings(CGPoint a, CGPoint b, const Bounds& area) {
    std::vector<double> found;
    if (area.hold(a) && area.hold(b))
        return found;
    const auto add = [&](double side, double from, double to) {
        const double t = (side - from) / (to - from);
        if (t > 0 && t < 1)
            found.push_back(t);
    };
    add(area.left, a.x, b.x);
    add(area.right, a.x, b.x);
    add(area.top, a.y, b.y);
    add(area.bottom, a.y, b.y);
    std::sort(found.begin(), found.end());
    return found;
}

/// How much of the way from `a` to `b` lies in the area.
std::optional<std::pair<double, double>> inside(CGPoint a, CGPoint b, const Bounds& area) {
    if (area.hold(a) && area.hold(b))
        return std::pair(0.0, 1.0);
    std::vector<double> stops = crossings(a, b, area);
    stops.insert(stops.begin(), 0);
    stops.push_back(1);
    std::optional<std::pair<double, double>> part;
    for (std::size_t i = 1; i < stops.size(); ++i) {
        if (!area.hold(mixed(a, b, (stops[i - 1] + stops[i]) / 2)))
            continue;
        part = {part ? part->first : stops[i - 1], stops[i]};
    }
    return part;
}

/// Begins a closed line outside of the area, if any of it is, so that it is cut nowhere inside.
void beginOutside(Line& line, const Bounds& area) {
    const auto found = std::find_if(line.points.begin(), line.points.end(),
                                    [&](CGPoint p) { return !area.hold(p); });
    if (!line.isClosed || found == line.points.end())
        return;
    line.points.pop_back();
    std::rotate(line.points.begin(), found, line.points.end());
    line.points.push_back(line.points.front());
}

/// A place on a line: on the way from the point of that number to the next.
struct Place {
    std::size_t index;
    double t;
};

/// A line that is drawn in parts.
class PartedLine {
public:
    PartedLine(const Line& line, const DashMeasure& dashes, CGPath& out)
        : points_(line.points), dashes_(dashes), out_(out) {
        if (dashes.period > 0)
            measure();
    }

    void addParts(const Bounds& area) {
        bool isDown = false;
        for (std::size_t i = 0; i + 1 < points_.size(); ++i) {
            const auto part = inside(points_[i], points_[i + 1], area);
            if (part && !(isDown && part->first == 0))
                begin(dashStart({i, part->first}), i);
            if (part)
                out_.addLineTo(mixed(points_[i], points_[i + 1], part->second));
            isDown = part && part->second == 1;
        }
    }

private:
    void measure() {
        lengths_.push_back(0);
        for (std::size_t i = 0; i + 1 < points_.size(); ++i)
            lengths_.push_back(lengths_.back() + lengthFrom(i));
    }

    double lengthFrom(std::size_t index) const noexcept {
        const CGPoint way = points_[index + 1] - points_[index];
        const CGAffineTransform& t = dashes_.toPen;
        return std::hypot(way.x * t.a + way.y * t.c, way.x * t.b + way.y * t.d);
    }

    /// Where a dash begins as the first one does, at or before that place.
    Place dashStart(Place place) const noexcept {
        if (lengths_.empty())
            return place;
        const double at =
            lengths_[place.index] + place.t * (lengths_[place.index + 1] - lengths_[place.index]);
        const double start = std::floor(at / dashes_.period) * dashes_.period;
        while (place.index > 0 && lengths_[place.index] > start)
            --place.index;
        const double length = lengths_[place.index + 1] - lengths_[place.index];
        const double t = length > 0 ? (start - lengths_[place.index]) / length : 0;
        return {place.index, std::clamp(t, 0.0, 1.0)};
    }

    /// Draws from there to the point of that number, if it comes later.
    void begin(Place from, std::size_t index) {
        out_.moveTo(mixed(points_[from.index], points_[from.index + 1], from.t));
        for (std::size_t i = from.index + 1; i <= index; ++i)
            out_.addLineTo(points_[i]);
    }

    const std::vector<CGPoint>& points_;
    const DashMeasure& dashes_;
    CGPath& out_;
    std::vector<double> lengths_; // of the line as far as each point
};

} // namespace

bool goesFar(const CGPath& path, const CGRect& tile) noexcept {
    const Bounds near = Bounds::of(tile, farthest);
    const auto isFar = [&](CGPoint p) { return !near.hold(p); };
    return std::any_of(path.elements().begin(), path.elements().end(), [&](const auto& element) {
        const auto& [a, b, c] = element.points;
        const bool isCurve = element.type == CGPath::ElementType::addCurveToPoint;
        const bool hasPoint = element.type != CGPath::ElementType::closeSubpath;
        return (hasPoint && isFar(a)) || (isCurve && (isFar(b) || isFar(c)));
    });
}

CGPath nearArea(const CGPath& path, const CGRect& tile) {
    constexpr double margin = 16;
    const Bounds area = Bounds::of(tile, margin);
    CGPath result;
    for (const Line& line : linesOf(path, area)) {
        // What lies outside is laid onto the nearest side, so that it goes around as before.
        result.moveTo(area.held(line.points.front()));
        for (std::size_t i = 0; i + 1 < line.points.size(); ++i) {
            const CGPoint a = line.points[i], b = line.points[i + 1];
            for (const double t : crossings(a, b, area))
                result.addLineTo(area.held(mixed(a, b, t)));
            result.addLineTo(area.held(b));
        }
        result.closeSubpath();
    }
    return result;
}

CGPath nearLines(const CGPath& path, const CGRect& reach, const DashMeasure& dashes) {
    const Bounds area = Bounds::of(reach);
    CGPath result;
    for (Line& line : linesOf(path, area)) {
        if (!(dashes.period > 0))
            beginOutside(line, area);
        PartedLine(line, dashes, result).addParts(area);
        if (line.isClosed && std::all_of(line.points.begin(), line.points.end(),
                                         [&](CGPoint p) { return area.hold(p); }))
            result.closeSubpath();
    }
    return result;
}

} // namespace zorvan
