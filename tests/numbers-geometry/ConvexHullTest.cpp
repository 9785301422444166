#include "Printing.h"
#include <tests/Testing.h>

#include <zorvan/numbers-geometry/CGPoint.h>
#include <zorvan/numbers-geometry/Triangle.h>

namespace {

using Points = std::vector<CGPoint>;

// The hull written plainly: the order by repeated exchange of neighbours, the turns by
// `collinearity`.
Points plainHull(Points points) {
    const auto goesBefore = [](CGPoint a, CGPoint b) {
        return a.x < b.x || (a.x == b.x && std::fabs(a.y - b.y) <= 0.00001 && a.y < b.y);
    };
    for (std::size_t i = 1; i < points.size(); ++i)
        for (std::size_t j = i; j > 0 && goesBefore(points[j], points[j - 1]); --j)
            std::swap(points[j], points[j - 1]);
    Points hull;
    const auto addChain = [&hull](const Points& chain) {
        const std::size_t base = hull.size();
        for (const CGPoint& p : chain) {
            while (hull.size() - base >= 2) {
                const auto state = Triangle(hull[hull.size() - 2], hull.back(), p).collinearity(6);
                if (state == Triangle::CollinearityState::point ||
                    state == Triangle::CollinearityState::counterClockwiseTurn)
                    break;
                hull.pop_back();
            }
            hull.push_back(p);
        }
        hull.pop_back();
    };
    addChain(points);
    std::reverse(points.begin(), points.end());
    addChain(points);
    return hull;
}

Points randomPoints(std::mt19937_64& random, std::size_t count, double from, double to) {
    std::uniform_real_distribution<> real(from, to);
    Points points(count);
    for (CGPoint& p : points)
        p = {real(random), real(random)};
    return points;
}

} // namespace

TEST(ConvexHull, OfAFewPoints) {
    EXPECT_EQ(CGPoint::convexHull({{0, 0}, {1, 0}, {2, 0}, {2, 2}, {0, 2}, {1, 1}}),
              (Points{{0, 0}, {2, 0}, {2, 2}, {0, 2}}));
    EXPECT_EQ(CGPoint::convexHull({}), Points());
    EXPECT_EQ(CGPoint::convexHull({{3, 4}, {1, 2}}), (Points{{1, 2}, {3, 4}}));
}

TEST(ConvexHull, EqualsThePlainlyWrittenOne) {
    std::mt19937_64 random(5);
    // Scales at which points coincide, are collinear, or overflow at six places.
    for (const double scale : {1e-7, 1e-5, 1e-3, 1.0, 1e9, 1e12, 1e160, 1e303})
        for (std::size_t count = 1; count < 80; count += 2) {
            const Points points = randomPoints(random, count, -scale / 2, scale / 2);
            EXPECT_EQ(CGPoint::convexHull(points), plainHull(points)) << scale;
        }
    for (const std::size_t count : {9U, 200U, 2000U}) {
        Points many = randomPoints(random, count, -10, 1000);
        const Points hull = plainHull(many);
        CGPoint::convexHullInPlace(many);
        EXPECT_EQ(many, hull);
        Points grid = randomPoints(random, count, 0, 12);
        for (CGPoint& p : grid)
            p = p.floor();
        EXPECT_EQ(CGPoint::convexHull(grid), plainHull(grid));
    }
}

TEST(ConvexHull, TakesLinkedPointsOfOneXInAscendingY) {
    const double step = 0.9e-5;
    // Two stacks of linked points, interleaved: each keeps its places.
    const Points points{{0, 2 * step}, {0, 5 + step}, {0, 0}, {0, 5}, {0, step}, {9, 9}, {9, -9}};
    const Points ordered{{0, 0}, {0, 5}, {0, step}, {0, 5 + step}, {0, 2 * step}, {9, 9}, {9, -9}};
    EXPECT_EQ(CGPoint::convexHull(points), plainHull(ordered));
    EXPECT_EQ(CGPoint::convexHull(points).front(), CGPoint(0, 0));
    const Points near{{1e-6, 0}, {0, 1e-6}, {5, -5}, {5, 5}}; // x goes before y
    EXPECT_EQ(CGPoint::convexHull(near).front(), CGPoint(0, 1e-6));
}

TEST(ConvexHull, SortsSignsZerosAndInfinities) {
    constexpr double infinity = INFINITY;
    Points points;
    for (const double x : {7.0, -7.0, 0.0, -0.0, 5e-324, 1.7e308, -1.7e308, infinity, -infinity})
        for (const double y : {7.0, -7.0, 0.0, 1e18, 1.7e308, -1.7e308, infinity, -infinity})
            points.push_back({x, y});
    const std::size_t each = points.size();
    for (const std::size_t count : {each, 30 * each}) {
        while (points.size() < count)
            points.push_back(points[points.size() - each]);
        Points withNone = points;
        withNone.insert(withNone.begin() + 5, {{NAN, 0}, {0, NAN}});
        EXPECT_EQ(CGPoint::convexHull(withNone), plainHull(points));
    }
}
