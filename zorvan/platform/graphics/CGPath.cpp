#include <zorvan/platform/graphics/CGPath.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace zorvan {

namespace {

bool isFinite(CGPoint p) noexcept { return std::isfinite(p.x) && std::isfinite(p.y); }

bool isFinite(const CGRect& r) noexcept {
    return isFinite(CGPoint(r.minX(), r.minY())) && isFinite(CGPoint(r.maxX(), r.maxY()));
}

/// How far the control points of a quarter circle of radius 1 are from its ends.
constexpr double quarterArc = 0.5522847498307936;

CGPoint mixed(CGPoint a, CGPoint b, double t) noexcept {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

CGPoint onCurve(CGPoint p0, const std::array<CGPoint, 3>& p, double t) noexcept {
    const CGPoint a = mixed(p0, p[0], t), b = mixed(p[0], p[1], t), c = mixed(p[1], p[2], t);
    return mixed(mixed(a, b, t), mixed(b, c, t), t);
}

/// Into how many lines a curve is cut: its distance from them falls with the square of that.
int lineCount(CGPoint p0, const std::array<CGPoint, 3>& p, double tolerance) noexcept {
    const CGPoint a = (p0 - 2 * p[0] + p[1]).abs(), b = (p[0] - 2 * p[1] + p[2]).abs();
    const double bend = std::hypot(std::max(a.x, b.x), std::max(a.y, b.y));
    const double lines = std::sqrt(0.75 * bend / tolerance);
    return static_cast<int>(std::clamp(std::ceil(lines), 1.0, 1000.0));
}

/// How often the polygon winds around the point, and how often a ray from it crosses it.
struct Crossings {
    int winding = 0;
    int count = 0;
};

void addCrossing(Crossings& crossings, CGPoint from, CGPoint to, CGPoint point) noexcept {
    const bool goesUp = from.y <= point.y && to.y > point.y;
    const bool goesDown = to.y <= point.y && from.y > point.y;
    if (!goesUp && !goesDown)
        return;
    const double x = from.x + (point.y - from.y) / (to.y - from.y) * (to.x - from.x);
    if (x <= point.x)
        return;
    crossings.winding += goesUp ? 1 : -1;
    ++crossings.count;
}

CGRect with(const CGRect& bounds, CGPoint p) noexcept { return bounds.union_({p, CGSize()}); }

} // namespace

void CGPath::add(ElementType type, CGPoint a, CGPoint b, CGPoint c) {
    elements_.push_back({type, {a, b, c}});
}

void CGPath::moveTo(CGPoint point) {
    if (!isFinite(point))
        return;
    add(ElementType::moveToPoint, point);
    current_ = start_ = point;
}

void CGPath::addLineTo(CGPoint point) {
    if (isEmpty() || !isFinite(point))
        return;
    add(ElementType::addLineToPoint, point);
    current_ = point;
}

void CGPath::addCurveTo(CGPoint control1, CGPoint control2, CGPoint end) {
    if (isEmpty() || !isFinite(control1) || !isFinite(control2) || !isFinite(end))
        return;
    add(ElementType::addCurveToPoint, control1, control2, end);
    current_ = end;
}

void CGPath::addQuadCurveTo(CGPoint control, CGPoint end) {
    addCurveTo(mixed(current_, control, 2.0 / 3), mixed(end, control, 2.0 / 3), end);
}

void CGPath::closeSubpath() {
    if (isEmpty())
        return;
    add(ElementType::closeSubpath);
    current_ = start_;
}

void CGPath::addRect(const CGRect& rect) {
    if (rect.isNull() || !isFinite(rect))
        return;
    moveTo(rect.bottomLeft());
    addLineTo(rect.bottomRight());
    addLineTo(rect.topRight());
    addLineTo(rect.topLeft());
    closeSubpath();
}

void CGPath::addRoundedRect(const CGRect& rect, double radiusX, double radiusY) {
    if (rect.isNull() || !isFinite(rect))
        return;
    // Written so that a radius that is no number counts as 0.
    const double rx = radiusX > 0 ? std::min(radiusX, rect.width() / 2) : 0;
    const double ry = radiusY > 0 ? std::min(radiusY, rect.height() / 2) : 0;
    if (!(rx > 0 && ry > 0))
        return addRect(rect);
    const double left = rect.minX(), right = rect.maxX(), bottom = rect.minY(), top = rect.maxY();
    const double kx = rx * (1 - quarterArc), ky = ry * (1 - quarterArc);
    moveTo({left + rx, bottom});
    addLineTo({right - rx, bottom});
    addCurveTo({right - kx, bottom}, {right, bottom + ky}, {right, bottom + ry});
    addLineTo({right, top - ry});
    addCurveTo({right, top - ky}, {right - kx, top}, {right - rx, top});
    addLineTo({left + rx, top});
    addCurveTo({left + kx, top}, {left, top - ky}, {left, top - ry});
    addLineTo({left, bottom + ry});
    addCurveTo({left, bottom + ky}, {left + kx, bottom}, {left + rx, bottom});
    closeSubpath();
}

void CGPath::addEllipse(const CGRect& rect) {
    addRoundedRect(rect, rect.width() / 2, rect.height() / 2);
}

void CGPath::addArc(CGPoint center, double radius, double startAngle, double endAngle,
                    bool clockwise) {
    constexpr double turn = 2 * std::numbers::pi;
    double sweep = endAngle - startAngle;
    if (!isFinite(center) || !std::isfinite(sweep) || !(radius >= 0) || !std::isfinite(radius))
        return;
    // More than a turn in the asked direction is one turn; less than none goes around.
    if (clockwise)
        sweep = sweep < -turn ? -turn : sweep > 0 ? std::fmod(sweep, turn) - turn : sweep;
    else
        sweep = sweep > turn ? turn : sweep < 0 ? std::fmod(sweep, turn) + turn : sweep;
    const int pieces = std::max(1, static_cast<int>(std::ceil(std::abs(sweep) / (turn / 4))));
    const double step = sweep / pieces;
    const double reach = 4.0 / 3 * std::tan(step / 4) * radius;
    const auto at = [&](double angle, double out, double along) {
        return CGPoint(center.x + std::cos(angle) * out - std::sin(angle) * along,
                       center.y + std::sin(angle) * out + std::cos(angle) * along);
    };
    const CGPoint begin = at(startAngle, radius, 0);
    isEmpty() ? moveTo(begin) : addLineTo(begin);
    for (int i = 0; i < pieces; ++i) {
        const double from = startAngle + step * i, to = startAngle + step * (i + 1);
        addCurveTo(at(from, radius, reach), at(to, radius, -reach), at(to, radius, 0));
    }
}

void CGPath::addPath(const CGPath& path) {
    if (path.isEmpty())
        return;
    const CGPoint current = path.current_, start = path.start_;
    elements_.reserve(elements_.size() + path.elements_.size());
    for (std::size_t i = 0, count = path.elements_.size(); i < count; ++i)
        elements_.push_back(path.elements_[i]);
    current_ = current;
    start_ = start;
}

CGRect CGPath::controlPointBoundingBox() const noexcept {
    CGRect bounds = CGRect::null;
    for (const Element& element : elements_) {
        const std::size_t count = element.type == ElementType::closeSubpath      ? 0
                                  : element.type == ElementType::addCurveToPoint ? 3
                                                                                 : 1;
        for (std::size_t i = 0; i < count; ++i)
            bounds = with(bounds, element.points[i]);
    }
    return bounds;
}

CGRect CGPath::boundingBox() const {
    CGRect bounds = CGRect::null;
    for (const std::vector<CGPoint>& polygon : polygons(0.01))
        for (const CGPoint p : polygon)
            bounds = with(bounds, p);
    return bounds;
}

CGPath CGPath::applying(const CGAffineTransform& t) const {
    CGPath result = *this;
    for (Element& element : result.elements_)
        for (CGPoint& point : element.points)
            point = point.applying(t);
    result.current_ = current_.applying(t);
    result.start_ = start_.applying(t);
    const CGRect bounds = result.controlPointBoundingBox();
    return bounds.isNull() || isFinite(bounds) ? result : CGPath();
}

std::vector<std::vector<CGPoint>> CGPath::polygons(double tolerance) const {
    std::vector<std::vector<CGPoint>> result;
    CGPoint current, start;
    bool isOpen = false;
    const auto add = [&](CGPoint point) {
        if (!isOpen)
            result.push_back({current});
        isOpen = true;
        result.back().push_back(point);
        current = point;
    };
    for (const auto& [type, points] : elements_) {
        if (type == ElementType::closeSubpath) {
            current = start;
            isOpen = false;
        } else if (type == ElementType::moveToPoint) {
            current = start = points[0];
            isOpen = false;
        } else if (type == ElementType::addLineToPoint) {
            add(points[0]);
        } else {
            const CGPoint from = current;
            const int count = lineCount(from, points, tolerance);
            for (int i = 1; i < count; ++i)
                add(onCurve(from, points, static_cast<double>(i) / count));
            add(points[2]);
        }
    }
    return result;
}

bool CGPath::contains(CGPoint point, CGPathFillRule rule) const {
    Crossings crossings;
    for (const std::vector<CGPoint>& polygon : polygons())
        for (std::size_t i = 0; i < polygon.size(); ++i)
            addCrossing(crossings, polygon[i], polygon[(i + 1) % polygon.size()], point);
    return rule == CGPathFillRule::winding ? crossings.winding != 0 : crossings.count % 2 != 0;
}

} // namespace zorvan
