#include <zorvan/platform/graphics/internal/widestSpan.h>

#include <algorithm>
#include <cstddef>

namespace zorvan {

namespace {

struct Crossing {
    double x;
    int winding;
};

std::vector<TextSpan> insideAt(const std::vector<std::vector<CGPoint>>& polygons, double y) {
    std::vector<Crossing> crossings;
    for (const std::vector<CGPoint>& polygon : polygons)
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            const CGPoint a = polygon[i], b = polygon[(i + 1) % polygon.size()];
            if ((a.y <= y) != (b.y <= y))
                crossings.push_back(
                    {a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x), a.y <= y ? 1 : -1});
        }
    std::sort(crossings.begin(), crossings.end(),
              [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
    std::vector<TextSpan> spans;
    int winding = 0;
    for (const auto& [x, direction] : crossings) {
        if (winding == 0)
            spans.push_back({x, x});
        winding += direction;
        spans.back().right = x;
    }
    return spans;
}

std::vector<TextSpan> intersection(const std::vector<TextSpan>& a, const std::vector<TextSpan>& b) {
    std::vector<TextSpan> result;
    for (const TextSpan& one : a)
        for (const TextSpan& other : b) {
            const TextSpan both{std::max(one.left, other.left), std::min(one.right, other.right)};
            if (both.length() > 0)
                result.push_back(both);
        }
    return result;
}

/// Where the outline may turn, and some heights between for safety.
std::vector<double> heights(const std::vector<std::vector<CGPoint>>& polygons, double top,
                            double bottom) {
    // Just inside, since an edge that lies on the border is above or below.
    const double inset = (bottom - top) * 1e-6;
    std::vector<double> result{top + inset, bottom - inset};
    for (const std::vector<CGPoint>& polygon : polygons)
        for (const CGPoint& p : polygon)
            if (p.y > top + inset && p.y < bottom - inset) {
                result.push_back(p.y - inset);
                result.push_back(p.y + inset);
            }
    return result;
}

} // namespace

std::optional<TextSpan> widestSpan(const std::vector<std::vector<CGPoint>>& polygons, double top,
                                   double bottom) {
    std::optional<std::vector<TextSpan>> common;
    for (const double y : heights(polygons, top, bottom)) {
        const std::vector<TextSpan> inside = insideAt(polygons, y);
        common = common ? intersection(*common, inside) : inside;
        if (common->empty())
            return std::nullopt;
    }
    return *std::max_element(
        common->begin(), common->end(),
        [](const TextSpan& a, const TextSpan& b) { return a.length() < b.length(); });
}

} // namespace zorvan
