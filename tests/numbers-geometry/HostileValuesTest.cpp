#include "Printing.h"
#include <tests/Testing.h>

#include <zorvan/numbers-geometry/Angle.h>
#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/Integer.h>
#include <zorvan/numbers-geometry/Line.h>
#include <zorvan/numbers-geometry/Segment.h>
#include <zorvan/numbers-geometry/Triangle.h>

// Every operation, on values at and beyond the edges. What they promise there: no undefined
// behaviour (the sanitizers watch), integers in range, standardised sides not negative, null kept
// apart.

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max();
const double reals[] = {0.0,     -0.0,  1.0,     -2.5,     5e-324,   1e-300,    0x1p63,
                        -9.3e18, 1e300, largest, -largest, infinity, -infinity, NAN};

// What is computed is used, lest it be left out.
template <class... T>
void use(const T&... values) {
    (..., [](const void* value) { __asm__ volatile("" : : "r"(value) : "memory"); }(&values));
}

template <class T>
void useReal(T x, T y) {
    for (const std::int64_t places : {std::int64_t{0}, std::int64_t{6}, INT64_MAX, INT64_MIN})
        use(zorvan::round(x, places), truncate(x, places), roundInt(x, places),
            isSimilarTo(x, y, places));
    use(roundInt(x), floorInt(x), ceilInt(x), toByte(x), zorvan::clamp(x, y, 1), glue(x, y, 1),
        positiveMod(x, y), overlap(x, y, x));
    EXPECT_GT(fraction(x, y).denominator, 0);
    EXPECT_FALSE(description(static_cast<double>(x)).empty());
}

void useRect(CGRect r, CGPoint p) {
    const double s = p.y;
    const CGRect other(p, p.inversed().size());
    EXPECT_FALSE(r.width() < 0 || r.height() < 0);
    use(r.intersection(other), r.union_(other), r.insetBy(s, p.x),
        r.applying({p.x, s, s, p.x, s, s}), r.with({.rw = s}), r.with({.cw = s}),
        r.shifting({.origin = p}), r.round(), r.scaledBy(s), r.standardized(),
        r.shrunkBy({.percent = s}), r.centered(other), r.fitting(other), r.filling(other),
        r.innerFittingRect(s), r.innerFillingRect(s), r.innerSquare(), r.outerSquare(), r * s, -r,
        r.minMax(p), std::hash<CGRect>{}(r));
    for (const RectAnchor anchor : RectAnchor::allValues) {
        CGRect moved = r;
        moved.move(anchor, p);
        EXPECT_FALSE(moved.size.width < 0 || moved.size.height < 0);
        use(r.rect(anchor, other.size));
    }
    CGRect expanded = r;
    expanded.expand(p);
    const auto [w, h] = r.roundIntWidthHeight();
    EXPECT_TRUE(w >= 0 && h >= 0);
    EXPECT_EQ(r.intersects(other), !r.intersection(other).isNull());
    EXPECT_FALSE((r.isEmpty() && r.contains(p)) || CGRect::null.contains(p));
}

} // namespace

TEST(HostileValues, Reals) {
    for (const double x : reals)
        for (const double y : reals) {
            useReal(x, y);
            useReal(static_cast<float>(x), static_cast<float>(y));
            const Interval i(x, y);
            use(i.middle(), i.restrictValue(y), i.scaleNormalizedValue(x), i.randomValue(),
                i.hasConverged(INT64_MAX), i.intersects({y, x}), i.isSimilarTo({y, x}, 400));
            const Angle angle({.radians = x});
            EXPECT_FALSE(angle.value() < 0 || angle.value() >= PI_2_1);
            use((angle + Angle({.degrees = y})).complementary());
        }
}

TEST(HostileValues, Integers) {
    for (const std::int64_t x :
         {INT64_MIN, INT64_MIN + 1, std::int64_t{-1}, std::int64_t{0}, std::int64_t{1}, INT64_MAX})
        for (const std::int64_t y : {INT64_MIN, std::int64_t{-1}, std::int64_t{0}, INT64_MAX}) {
            EXPECT_TRUE(zorvan::abs(x) >= 0 && factorial(x) >= 1);
            EXPECT_TRUE(positiveRemainder(x, y) >= 0 || y <= 0);
            use(zorvan::pow(x, y), randomValue<std::int64_t>(x, y));
            EXPECT_LE(zeroPadded(x, y).size(), 20U);
        }
}

TEST(HostileValues, PointsSizesAndRectangles) {
    for (const double a : reals)
        for (const double b : reals) {
            const CGPoint p(a, b);
            const CGSize z(a, b);
            use(p.unitScale(b), p / p, p.round(300), p.distance(p * 2), z.clamping(b),
                z.clamping(CGSize(b, a)), z.roundInt(), z.scaling({.toWidth = b}),
                z.fitting(CGSize(b, a)), z.filling(z));
            EXPECT_NE(z.roundIntDesc().find(" x "), std::string::npos);
            for (const double c : reals)
                for (const double d : {0.0, -1.0, 1e300, infinity, double{NAN}})
                    useRect({a, c, b, d}, {c, b});
        }
}

TEST(HostileValues, LinesAndTransforms) {
    for (const double a : reals)
        for (const double b : reals)
            for (const double c : reals) {
                const Segment s({a, b}, {c, a});
                const Segment t({b, c}, {a, a});
                use(s.intersects(t), s.intersects({.horizontal = c}), s.normal(),
                    s.distance({b, b}), s.contains({c, b}), s.isColinearTo(t, b),
                    Line(s.start, s.end).intersects(Line(t.start, t.end)),
                    Triangle(s.start, t.start, t.end).collinearity(6),
                    CGPoint(a, b).applying(CGAffineTransform(a, b, c, a, b, c).inverted()));
            }
}

TEST(HostileValues, Hulls) {
    std::vector<CGPoint> points;
    for (const double a : reals)
        for (const double b : reals)
            points.push_back({a, b});
    EXPECT_GE(CGPoint::convexHull(points).size(), 3U);
    use(CGPoint::polygonArea(points));
    for (int i = 0; i < 3; ++i) // enough for the other way of sorting
        points.insert(points.end(), points.begin(), points.end());
    EXPECT_GE(CGPoint::convexHull(points).size(), 3U);
}
