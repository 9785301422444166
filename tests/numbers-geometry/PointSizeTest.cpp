#include "Printing.h"
#include <tests/Testing.h>

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/NSEdgeInsets.h>
#include <zorvan/numbers-geometry/Triangle.h>

TEST(CGPoint, ReplacesAndMeasures) {
    const CGPoint p(3, 4);
    EXPECT_EQ(p.with({.x = 7}).adding({.y = 1}).inversed().inverted().middle(), CGPoint(2.5, 3.5));
    EXPECT_EQ(CGPoint({.square = 2}).size(), CGSize(2, 2));
    EXPECT_EQ(CGPoint(2.46, -2.45).round(1), CGPoint(2.5, -2.5));
    EXPECT_EQ(p.unitScale(10), CGPoint(6, 8));
    EXPECT_EQ(CGPoint(0, 0).unitScale(10), CGPoint(0, 0));
    EXPECT_EQ(-(12 / (1 - p * CGPoint(2, 2) / CGPoint(3, 2))), CGPoint(12, 4));
    // The area of a polygon whatever its winding.
    const std::vector<CGPoint> polygons[] = {
        {{0, 0}, {1, 0}, {1, 1}, {0, 1}}, {{0, 1}, {1, 1}, {1, 0}, {0, 0}}, {}, {{5, 7}}};
    for (const std::vector<CGPoint>& polygon : polygons)
        EXPECT_EQ(CGPoint::polygonArea(polygon), polygon.size() == 4 ? 1 : 0);
}

template <class Record>
void expectArithmetic(const Record& a, const Record& b, const Record& sum, const Record& twoMore) {
    Record c = a;
    EXPECT_EQ(c += b, sum);
    EXPECT_EQ(c -= b, a);
    EXPECT_EQ(c += 2, twoMore);
    EXPECT_EQ(c -= 2, a);
    EXPECT_EQ(c *= 2, a + a);
    EXPECT_EQ(c /= 2, a);
    EXPECT_EQ(2 + a, +twoMore);
    EXPECT_EQ(2 - twoMore, -a);
}

TEST(Records, AreChangedInPlaceAsTheyAreAdded) {
    expectArithmetic<CGPoint>({1, 2}, {3, 5}, {4, 7}, {3, 4});
    expectArithmetic<CGSize>({1, 2}, {3, 5}, {4, 7}, {3, 4});
    EXPECT_EQ(2 * CGSize(1, 2), CGSize(2, 4));
    expectArithmetic<Triangle>({{1, 2}, {3, 4}, {5, 6}}, {{1, 0}, {0, 1}, {2, 3}},
                               {{2, 2}, {3, 5}, {7, 9}}, {{3, 4}, {5, 6}, {7, 8}});
}

TEST(CGSize, KnowsItsShapeAndReplacesUnderBothNames) {
    const CGSize z(3, 4);
    EXPECT_TRUE(CGSize(0, 5).isEmpty());
    EXPECT_TRUE(CGSize(3, 3).isLandscape());
    EXPECT_FALSE(CGSize(3, 3).isPortrait());
    EXPECT_EQ(CGSize(3, -4).innerSquare() + z.outerSquare(), CGSize(0, 0));
    EXPECT_EQ(z.flipped().rect(), CGRect(0, 0, 4, 3));
    EXPECT_EQ(z.center(), CGPoint(1.5, 2));
    EXPECT_EQ(CGSize(639.5, 480.4).roundIntDesc(), "640 x 480");
    EXPECT_EQ(CGSize(639.5, 480.4).roundInt(), CGSize(640, 480));
    EXPECT_EQ(CGSize(1e300, NAN).roundIntDesc(), "9223372036854775807 x 0");
    EXPECT_EQ(z.with({.w = 7}).adding({.h = 1}).multiplying({.w = 2}), CGSize(14, 5));
    EXPECT_EQ(z.with({.height = 7}).adding({.width = 1}).multiplying({.width = 2, .height = 3}),
              CGSize(8, 21));
    EXPECT_EQ(10 - 2 * z / 4, CGSize(8.5, 8));
}

TEST(CGSize, FitsAndFills) {
    EXPECT_EQ(CGSize(-400, 50).clamping(100), CGSize(100, 12.5));
    EXPECT_EQ(CGSize(-50, 20).clamping(100), CGSize(-50, 20));
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> side(1, 1000);
    for (int i = 0; i < 20000; ++i) {
        const CGSize size(side(random), side(random)), bounds(side(random), side(random));
        const CGSize box({.square = bounds.width});
        const bool fits = size.width <= bounds.width && size.height <= bounds.height;
        const CGSize clamped = size.clamping(bounds), shorter = size.clamping(bounds.width);
        ASSERT_EQ(clamped == size, fits);
        ASSERT_TRUE(fits || clamped.width == bounds.width || clamped.height == bounds.height);
        ASSERT_TRUE(clamped.width <= bounds.width * (1 + 1e-15));
        ASSERT_TRUE(clamped.height <= bounds.height * (1 + 1e-15));
        ASSERT_NEAR(clamped.whRatio() / size.whRatio(), 1, 1e-15);
        ASSERT_TRUE(shorter.overlap(size.clamping(box), 1e-12));
        ASSERT_EQ(shorter.max(), std::min(size.max(), bounds.width));
        // Signs are dropped by the one and carried through by the other.
        ASSERT_EQ((-size).clamping(bounds.width), shorter == size ? -size : shorter);
        ASSERT_EQ((-size).clamping(-bounds), -clamped);
    }
    EXPECT_EQ(CGSize(4, 2).scaling({.toWidth = 8}).scaling({.toHeight = 8}), CGSize(16, 8));
    // The ratio is that of the stored sides, the centring that of the standardised ones.
    EXPECT_EQ(CGSize(4, 2).centered(CGRect(0, 0, -10, 10)), CGRect(3, 4, 4, 2));
}

TEST(CGAffineTransform, AppliesTheNewMapFirst) {
    const CGPoint p(1, 2);
    const auto turn = CGAffineTransform({.rotationAngle = std::acos(-1.0) / 2});
    EXPECT_TRUE(p.applying(turn).overlap({-2, 1}, 1e-15)); // counter-clockwise
    const auto t = CGAffineTransform({.scale = 2}).translatedBy(10, 0);
    EXPECT_EQ(p.applying(t.scaledBy(3, 1)), CGPoint(26, 4));
    EXPECT_EQ(CGSize(1, 2).applying(t), CGSize(2, 4));
    EXPECT_EQ(p.applying(CGAffineTransform({.translationX = 10, .y = 0})
                             .concatenating(CGAffineTransform({.scaleX = 2, .y = 1}))),
              CGPoint(22, 2));
    EXPECT_EQ(t.caTransform3D(),
              (CATransform3D{.m11 = 2, .m22 = 2, .m33 = 1, .m41 = 20, .m42 = 0, .m44 = 1}));
}

TEST(CGAffineTransform, MutatingFormsAndInverseAgree) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<> real(0.5, 2);
    for (int i = 0; i < 1000; ++i) {
        const double x = real(random), y = real(random), angle = real(random);
        CGAffineTransform t;
        t.translateBy(x, y);
        t.rotate(angle);
        t.scaleBy(y, x);
        EXPECT_EQ(t,
                  CGAffineTransform::identity.translatedBy(x, y).rotatedBy(angle).scaledBy(y, x));
        const CGPoint p(real(random), real(random));
        EXPECT_TRUE(p.applying(t).applying(t.inverted()).overlap(p, 1e-12));
        t.concate(t.inverted());
        EXPECT_NEAR(t.a, 1, 1e-12);
    }
    const CGAffineTransform flat(0, 0, 0, 0, 5, 5);
    EXPECT_EQ(flat.inverted(), flat);
}

TEST(NSEdgeInsets, FillsTheNamedEdges) {
    EXPECT_EQ(NSEdgeInsets({.all = 8}), NSEdgeInsets(8, 8, 8, 8));
    EXPECT_EQ(NSEdgeInsets({.topAndBottom = 8}), NSEdgeInsets(8, 0, 8, 0));
    EXPECT_EQ(NSEdgeInsets({.leftAndRight = 8}), NSEdgeInsets(0, 8, 0, 8));
    EXPECT_EQ(NSEdgeInsets(4, 1, 2, 3).min(), 1);
    EXPECT_EQ(NSEdgeInsets(4, 1, 2, 3).max(), 4);
}
