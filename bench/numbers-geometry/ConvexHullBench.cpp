// The convex hull of a million points, beside a plain monotone chain on std::sort and
// Boost.Geometry.

#include <zorvan/numbers-geometry/CGPoint.h>

#include <benchmark/benchmark.h>
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/geometries.hpp>
#include <boost/geometry/geometries/point_xy.hpp>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using namespace zorvan;

namespace {

using Points = std::vector<CGPoint>;

Points inSquare() {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<> real(0, 1000);
    Points points(1'000'000);
    for (CGPoint& p : points)
        p = {real(random), real(random)};
    return points;
}

// Pixel positions: many points share an x.
Points onGrid() {
    Points points = inSquare();
    for (CGPoint& p : points)
        p = p.floor();
    return points;
}

// Every point is on the hull, or within the tolerance of it.
Points onCircle() {
    Points points = inSquare();
    for (CGPoint& p : points)
        p = CGPoint(std::cos(p.x), std::sin(p.x)) * 1e6;
    return points;
}

Points plainChain(Points points) {
    std::sort(points.begin(), points.end(), [](const CGPoint& a, const CGPoint& b) {
        return a.x < b.x || (a.x == b.x && a.y < b.y);
    });
    Points hull(2 * points.size());
    std::size_t n = 0;
    const auto add = [&](const CGPoint& p, std::size_t least) {
        while (n >= least) {
            const CGPoint u = hull[n - 1] - hull[n - 2];
            const CGPoint v = p - hull[n - 2];
            if (u.x * v.y - u.y * v.x > 0)
                break;
            --n;
        }
        hull[n++] = p;
    };
    for (const CGPoint& p : points)
        add(p, 2);
    const std::size_t least = n + 1;
    for (std::size_t i = points.size() - 1; i-- > 0;)
        add(points[i], least);
    hull.resize(n - 1);
    return hull;
}

void ours(benchmark::State& state, Points (*make)()) {
    const Points points = make();
    for (auto _ : state)
        benchmark::DoNotOptimize(CGPoint::convexHull(points));
}

void plain(benchmark::State& state, Points (*make)()) {
    const Points points = make();
    for (auto _ : state)
        benchmark::DoNotOptimize(plainChain(points));
}

void boostGeometry(benchmark::State& state, Points (*make)()) {
    using Point = boost::geometry::model::d2::point_xy<double>;
    boost::geometry::model::multi_point<Point> points;
    for (const CGPoint& p : make())
        points.emplace_back(p.x, p.y);
    for (auto _ : state) {
        boost::geometry::model::polygon<Point> hull;
        boost::geometry::convex_hull(points, hull);
        benchmark::DoNotOptimize(hull);
    }
}

} // namespace

#define ZORVAN_HULL(points)                                                                        \
    BENCHMARK_CAPTURE(ours, points, points)->Unit(benchmark::kMillisecond);                        \
    BENCHMARK_CAPTURE(plain, points, points)->Unit(benchmark::kMillisecond);                       \
    BENCHMARK_CAPTURE(boostGeometry, points, points)->Unit(benchmark::kMillisecond)

ZORVAN_HULL(inSquare);
ZORVAN_HULL(onGrid);
ZORVAN_HULL(onCircle);

BENCHMARK_MAIN();
