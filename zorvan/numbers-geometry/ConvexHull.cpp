#include <zorvan/numbers-geometry/CGPoint.h>
#include <zorvan/numbers-geometry/Triangle.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <span>
#include <vector>

namespace zorvan {

namespace {

constexpr double nearlyEqual = 0.00001;
constexpr std::int64_t hullPlaces = 6;

bool isLeft(const CGPoint& a, const CGPoint& b) noexcept { return a.x < b.x; }

bool isPoint(const CGPoint& p) noexcept { return !std::isnan(p.x) && !std::isnan(p.y); }

// Equal strips of the plane, numbered from left to right, for 32 points each on average: narrower
// ones cost more in dealing than they save in sorting. There is a single one when the points give
// no finite width.
class Strips {
public:
    explicit Strips(std::span<const CGPoint> points) noexcept {
        double right = -std::numeric_limits<double>::infinity();
        for (const CGPoint& p : points)
            if (isPoint(p)) {
                left_ = std::min(left_, p.x);
                right = std::max(right, p.x);
            }
        const std::size_t wanted = points.size() / 32;
        const double scale = static_cast<double>(wanted) / (right - left_);
        // A scale of zero is that of a width beyond the range of reals.
        if (!std::isfinite(left_) || !std::isfinite(right) || !std::isfinite(scale) || scale == 0)
            return;
        scale_ = scale;
        count_ = wanted + 1;
    }

    std::size_t count() const noexcept { return count_; }

    std::size_t indexOf(const CGPoint& p) const noexcept {
        if (count_ == 1)
            return 0;
        return std::min(static_cast<std::size_t>((p.x - left_) * scale_), count_ - 1);
    }

private:
    double left_ = std::numeric_limits<double>::infinity();
    double scale_ = 0;
    std::size_t count_ = 1;
};

void sortStrip(std::span<CGPoint> points) {
    constexpr std::size_t fewPoints = 64;
    if (points.size() > fewPoints) {
        // On a grid the points of a strip share their x.
        if (!std::is_sorted(points.begin(), points.end(), isLeft))
            std::stable_sort(points.begin(), points.end(), isLeft);
        return;
    }
    for (std::size_t i = 1; i < points.size(); ++i) {
        const CGPoint p = points[i];
        std::size_t place = i;
        for (; place > 0 && isLeft(p, points[place - 1]); --place)
            points[place] = points[place - 1];
        points[place] = p;
    }
}

// The points without those that are none, by x, the order among equals kept. Dealt into strips
// first, which leaves little to compare.
std::vector<CGPoint> sortedByX(std::span<const CGPoint> points) {
    const Strips strips(points);
    // The place of the next point of each strip; in the end that is where the next strip begins.
    std::vector<std::size_t> places(strips.count() + 1);
    for (const CGPoint& p : points)
        if (isPoint(p))
            ++places[strips.indexOf(p) + 1];
    std::partial_sum(places.begin(), places.end(), places.begin());
    std::vector<CGPoint> sorted(places.back());
    for (const CGPoint& p : points)
        if (isPoint(p))
            sorted[places[strips.indexOf(p)]++] = p;
    std::size_t first = 0;
    for (std::size_t strip = 0; strip < strips.count(); ++strip) {
        sortStrip(std::span(sorted).subspan(first, places[strip] - first));
        first = places[strip];
    }
    return sorted;
}

// Orders points that share an x. Those linked by steps of at most `nearlyEqual` in y take the
// places they have among them in ascending y; where the steps are longer, the input order stands.
class TieBreaker {
public:
    void order(std::span<CGPoint> points) {
        const auto isBelow = [](const CGPoint& a, const CGPoint& b) { return a.y < b.y; };
        if (std::is_sorted(points.begin(), points.end(), isBelow))
            return;
        input_.assign(points.begin(), points.end());
        ascending_.resize(points.size());
        std::iota(ascending_.begin(), ascending_.end(), std::size_t{0});
        std::stable_sort(ascending_.begin(), ascending_.end(),
                         [&](std::size_t i, std::size_t j) { return input_[i].y < input_[j].y; });
        for (std::size_t first = 0; first < ascending_.size();)
            first = placeLinked(points, first);
    }

private:
    // Places the linked points from `first` on in ascending y; returns where the next ones begin.
    std::size_t placeLinked(std::span<CGPoint> points, std::size_t first) {
        std::size_t end = first + 1;
        while (end < ascending_.size() &&
               input_[ascending_[end]].y - input_[ascending_[end - 1]].y <= nearlyEqual)
            ++end;
        const std::span linked = std::span(ascending_).subspan(first, end - first);
        places_.assign(linked.begin(), linked.end());
        std::sort(places_.begin(), places_.end());
        for (std::size_t i = 0; i < linked.size(); ++i)
            points[places_[i]] = input_[linked[i]];
        return end;
    }

    std::vector<CGPoint> input_;
    std::vector<std::size_t> ascending_;
    std::vector<std::size_t> places_;
};

std::vector<CGPoint> sortedForHull(std::span<const CGPoint> points) {
    std::vector<CGPoint> sorted = sortedByX(points);
    TieBreaker ties;
    for (auto first = sorted.begin(); first != sorted.end();) {
        const auto end = std::find_if(first, sorted.end(),
                                      [x = first->x](const CGPoint& p) { return p.x != x; });
        if (end - first > 1)
            ties.order({first, end});
        first = end;
    }
    return sorted;
}

// Whether two coordinates are surely not similar at the hull's places, without rounding them.
bool isClearlyApart(double a, double b) noexcept {
    return std::fabs(a) < 1e9 && std::fabs(a - b) > 2e-6;
}

// Whether the turn at `b` is a straight line or clockwise. The same answer as that of
// `Triangle::collinearity`, which rounds nine times.
bool removesMiddle(CGPoint a, CGPoint b, CGPoint c) noexcept {
    const Triangle triangle(a, b, c);
    const double scaledArea = triangle.signedArea() * 1e6;
    if (!(scaledArea < 0.5))
        return false;
    return isClearlyApart(a.x, b.x) || isClearlyApart(a.y, b.y) || !triangle.isPointy(hullPlaces);
}

void appendChain(std::vector<CGPoint>& hull, auto first, auto end) {
    const std::size_t base = hull.size();
    for (; first != end; ++first) {
        while (hull.size() >= base + 2 && removesMiddle(hull[hull.size() - 2], hull.back(), *first))
            hull.pop_back();
        hull.push_back(*first);
    }
    hull.pop_back();
}

} // namespace

double CGPoint::polygonArea(const std::vector<CGPoint>& points) noexcept {
    if (points.empty())
        return 0;
    double sum = 0;
    CGPoint previous = points.back();
    for (const CGPoint& p : points) {
        sum += previous.x * p.y - p.x * previous.y;
        previous = p;
    }
    return std::fabs(sum) * 0.5;
}

std::vector<CGPoint> CGPoint::convexHull(const std::vector<CGPoint>& points) {
    const std::vector<CGPoint> sorted = sortedForHull(points);
    std::vector<CGPoint> hull;
    if (sorted.empty())
        return hull;
    appendChain(hull, sorted.begin(), sorted.end());
    appendChain(hull, sorted.rbegin(), sorted.rend());
    return hull;
}

void CGPoint::convexHullInPlace(std::vector<CGPoint>& points) { points = convexHull(points); }

} // namespace zorvan
