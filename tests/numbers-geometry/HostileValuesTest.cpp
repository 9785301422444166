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
double sum = 0;
void use(double value) { sum += value; }
void use(CGPoint p) { use(p.x + p.y); }
void use(CGSize z) { use(z.width + z.height); }
void use(const CGRect& r) { use(r.origin), use(r.size); }
template <class T>
void use(const std::optional<T>& value) {
    if (value)
        use(*value);
}

template <class T>
void useReal(T x, T y) {
    for (const std::int64_t places : {std::int64_t{0}, std::int64_t{6}, INT64_MAX, INT64_MIN}) {
        use(static_cast<double>(zorvan::round(x, places) + truncate(x, places)));
        use(static_cast<double>(roundInt(x, places)));
        use(isSimilarTo(x, y, places));
    }
    use(static_cast<double>(roundInt(x) + 0) + static_cast<double>(floorInt(x)) +
        static_cast<double>(ceilInt(x)) + static_cast<double>(toByte(x)));
    use(static_cast<double>(zorvan::clamp(x, y, 1) + glue(x, y, 1) + positiveMod(x, y)));
    use(overlap(x, y, x));
    const Fraction f = fraction(x, y);
    EXPECT_GT(f.denominator, 0);
    EXPECT_FALSE(description(static_cast<double>(x)).empty());
}

void useRect(CGRect r, CGPoint p) {
    const double s = p.y;
    const CGRect other(p, p.inversed().size());
    if (!std::isnan(r.size.width)) {
        EXPECT_GE(r.width(), 0);
    }
    use(r.intersection(other)), use(r.union_(other)), use(r.insetBy(s, p.x));
    use(r.applying({p.x, s, s, p.x, s, s})), use(r.with({.rw = s})), use(r.with({.cw = s}));
    use(r.shifting({.origin = p})), use(r.round()), use(r.scaledBy(s)), use(r.standardized());
    use(r.shrunkBy({.percent = s})), use(r.centered(other)), use(r.fitting(other));
    use(r.filling(other)), use(r.innerFittingRect(s)), use(r.innerFillingRect(s));
    use(r.innerSquare()), use(r.outerSquare()), use(r * s), use(-r);
    for (const RectAnchor anchor : RectAnchor::allValues) {
        CGRect moved = r;
        moved.move(anchor, p);
        EXPECT_FALSE(moved.size.width < 0 || moved.size.height < 0);
        use(r.rect(anchor, other.size));
    }
    CGRect expanded = r;
    expanded.expand(p);
    use(expanded);
    use(r.minMax(p));
    const auto [w, h] = r.roundIntWidthHeight();
    EXPECT_GE(w, 0);
    EXPECT_GE(h, 0);
    EXPECT_EQ(r.intersects(other), !r.intersection(other).isNull());
    EXPECT_FALSE(r.isEmpty() && r.contains(p));
    EXPECT_FALSE(CGRect::null.contains(p));
    use(static_cast<double>(std::hash<CGRect>{}(r)));
}

} // namespace

TEST(HostileValues, Reals) {
    for (const double x : reals)
        for (const double y : reals) {
            useReal(x, y);
            useReal(static_cast<float>(x), static_cast<float>(y));
            const Interval i(x, y);
            use(i.middle() + i.restrictValue(y) + i.scaleNormalizedValue(x) + i.randomValue());
            use(i.hasConverged(INT64_MAX) + i.intersects({y, x}) + i.isSimilarTo({y, x}, 400));
            const Angle angle({.radians = x});
            EXPECT_FALSE(angle.value() < 0 || angle.value() >= PI_2_1);
            use((angle + Angle({.degrees = y})).complementary().value());
        }
}

TEST(HostileValues, Integers) {
    for (const std::int64_t x :
         {INT64_MIN, INT64_MIN + 1, std::int64_t{-1}, std::int64_t{0}, std::int64_t{1}, INT64_MAX})
        for (const std::int64_t y : {INT64_MIN, std::int64_t{-1}, std::int64_t{0}, INT64_MAX}) {
            EXPECT_GE(zorvan::abs(x), 0);
            EXPECT_GE(factorial(x), 1);
            if (y > 0) {
                EXPECT_GE(positiveRemainder(x, y), 0);
            }
            use(static_cast<double>(zorvan::pow(x, y)) +
                static_cast<double>(randomValue<std::int64_t>(x, y)));
            EXPECT_LE(zeroPadded(x, y).size(), 20U);
        }
}

TEST(HostileValues, PointsSizesAndRectangles) {
    for (const double a : reals)
        for (const double b : reals) {
            const CGPoint p(a, b);
            const CGSize z(a, b);
            use(p.unitScale(b)), use(p / p), use(p.round(300)), use(p.distance(p * 2));
            use(z.clamping(b)), use(z.clamping(CGSize(b, a))), use(z.roundInt());
            use(z.scaling({.toWidth = b})), use(z.fitting(CGSize(b, a))), use(z.filling(z));
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
                use(s.intersects(t)), use(s.intersects({.horizontal = c})), use(s.normal());
                use(s.distance({b, b}).value), use(s.contains({c, b})), use(s.isColinearTo(t, b));
                use(Line(s.start, s.end).intersects(Line(t.start, t.end)));
                use(static_cast<double>(Triangle(s.start, t.start, t.end).collinearity(6)));
                use(CGPoint(a, b).applying(CGAffineTransform(a, b, c, a, b, c).inverted()));
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
