#include "Printing.h"
#include <tests/Testing.h>

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/NSEdgeInsets.h>
#include <zorvan/numbers-geometry/Triangle.h>

TEST(CGPoint, ReplacesAndMeasures) {
    const CGPoint p(3, 4);
    EXPECT_EQ(p.with({.x = 7}), CGPoint(7, 4));
    EXPECT_EQ(p.adding({.y = 1}), CGPoint(3, 5));
    EXPECT_EQ(CGPoint({.square = 2}), CGPoint(2, 2));
    EXPECT_EQ(p.inversed(), CGPoint(4, 3));
    EXPECT_EQ(p.inverted(), p);
    EXPECT_EQ(p.middle(), CGPoint(1.5, 2));
    EXPECT_EQ(p.size(), CGSize(3, 4));
    EXPECT_EQ(CGPoint(2.46, -2.45).round(1), CGPoint(2.5, -2.5));
    EXPECT_EQ(p.length(), 5);
    EXPECT_EQ(p.unitScale(10), CGPoint(6, 8));
    EXPECT_EQ(CGPoint(0, 0).unitScale(10), CGPoint(0, 0));
    EXPECT_EQ(CGPoint(1, 1).distance({4, 5}), 5);
    EXPECT_EQ(CGPoint(1, 2).dotMult({3, 4}), 11);
    CGPoint q(6, 4);
    EXPECT_EQ(q * CGPoint(1, 2) + CGPoint(1, 2), CGPoint(7, 10));
    EXPECT_EQ(q / CGPoint(3, 2), CGPoint(2, 2));
    EXPECT_EQ(1 - q, CGPoint(-5, -3));
    EXPECT_EQ(12 / q, CGPoint(2, 3));
    q += 1;
    q *= 2;
    q -= CGPoint(4, 0);
    EXPECT_EQ(-(q - 1), CGPoint(-9, -9));
    // The area of a polygon whatever its winding.
    const std::vector<CGPoint> polygons[] = {
        {{0, 0}, {1, 0}, {1, 1}, {0, 1}}, {{0, 1}, {1, 1}, {1, 0}, {0, 0}}, {}, {{5, 7}}};
    for (const std::vector<CGPoint>& polygon : polygons)
        EXPECT_EQ(CGPoint::polygonArea(polygon), polygon.size() == 4 ? 1 : 0);
}

template <class Record>
void expectArithmetic(const Record& a, const Record& b, const Record& sum, const Record& twoMore) {
    EXPECT_EQ(a + b, sum);
    EXPECT_EQ(sum - b, a);
    EXPECT_EQ(a + 2, twoMore);
    EXPECT_EQ(twoMore - 2, a);
    EXPECT_EQ(a * 2, a + a);
    EXPECT_EQ((a + a) / 2, a);
    Record c = a;
    EXPECT_EQ(c += b, sum);
    EXPECT_EQ(c -= b, a);
    EXPECT_EQ(c += 2, twoMore);
    EXPECT_EQ(c -= 2, a);
    EXPECT_EQ(c *= 2, a + a);
    EXPECT_EQ(c /= 2, a);
}

TEST(Records, AreChangedInPlaceAsTheyAreAdded) {
    expectArithmetic<CGPoint>({1, 2}, {3, 5}, {4, 7}, {3, 4});
    expectArithmetic<CGSize>({1, 2}, {3, 5}, {4, 7}, {3, 4});
    expectArithmetic<Triangle>({{1, 2}, {3, 4}, {5, 6}}, {{1, 0}, {0, 1}, {2, 3}},
                               {{2, 2}, {3, 5}, {7, 9}}, {{3, 4}, {5, 6}, {7, 8}});
}

TEST(CGSize, KnowsItsShapeAndReplacesUnderBothNames) {
    const CGSize z(3, 4);
    EXPECT_TRUE(CGSize(0, 5).isEmpty());
    EXPECT_TRUE(CGSize(3, 3).isLandscape());
    EXPECT_FALSE(CGSize(3, 3).isPortrait());
    EXPECT_EQ(CGSize(3, -4).innerSquare(), CGSize(-4, -4));
    EXPECT_EQ(z.outerSquare(), CGSize(4, 4));
    EXPECT_EQ(z.flipped(), CGSize(4, 3));
    EXPECT_EQ(z.center(), CGPoint(1.5, 2));
    EXPECT_EQ(z.rect(), CGRect(0, 0, 3, 4));
    EXPECT_EQ(CGSize(639.5, 480.4).roundIntDesc(), "640 x 480");
    EXPECT_EQ(CGSize(639.5, 480.4).roundInt(), CGSize(640, 480));
    EXPECT_EQ(CGSize(1e300, NAN).roundIntDesc(), "9223372036854775807 x 0");
    EXPECT_EQ(z.with({.w = 7}), CGSize(7, 4));
    EXPECT_EQ(z.with({.height = 7}), CGSize(3, 7));
    EXPECT_EQ(z.adding({.h = 1}), CGSize(3, 5));
    EXPECT_EQ(z.adding({.width = 1}), CGSize(4, 4));
    EXPECT_EQ(z.multiplying({.w = 2}), CGSize(6, 4));
    EXPECT_EQ(z.multiplying({.width = 2, .height = 3}), CGSize(6, 12));
    EXPECT_EQ(10 - z, CGSize(7, 6));
    EXPECT_EQ(2 * z / 4, CGSize(1.5, 2));
}

TEST(CGSize, FitsAndFills) {
    EXPECT_EQ(CGSize(400, 200).clamping(100), CGSize(100, 50));
    EXPECT_EQ(CGSize(-400, 50).clamping(100), CGSize(100, 12.5));
    EXPECT_EQ(CGSize(-50, 20).clamping(100), CGSize(-50, 20));
    EXPECT_EQ(CGSize(400, 200).clamping({100, 100}), CGSize(100, 50));
    EXPECT_EQ(CGSize(200, 400).clamping({300, 100}), CGSize(50, 100));
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
    EXPECT_EQ(CGSize(4, 2).scaling({.toWidth = 8}), CGSize(8, 4));
    EXPECT_EQ(CGSize(4, 2).scaling({.toHeight = 8}), CGSize(16, 8));
    EXPECT_EQ(CGSize(4, 2).fitting(CGSize(100, 100)), CGSize(100, 50));
    EXPECT_EQ(CGSize(4, 2).filling(CGSize(100, 100)), CGSize(200, 100));
    EXPECT_EQ(CGSize(4, 2).fitting(CGRect(10, 10, 100, 100)), CGRect(10, 35, 100, 50));
    EXPECT_EQ(CGSize(4, 2).filling(CGRect(10, 10, 100, 100)), CGRect(-40, 10, 200, 100));
    // The ratio is that of the stored sides, the centring that of the standardised ones.
    EXPECT_EQ(CGSize(4, 2).centered(CGRect(0, 0, -10, 10)), CGRect(3, 4, 4, 2));
}

TEST(CGAffineTransform, AppliesTheNewMapFirst) {
    const CGPoint p(1, 2);
    const auto turn = CGAffineTransform({.rotationAngle = std::acos(-1.0) / 2});
    EXPECT_TRUE(p.applying(turn).overlap({-2, 1}, 1e-15)); // counter-clockwise
    const auto t = CGAffineTransform({.scale = 2}).translatedBy(10, 0);
    EXPECT_EQ(p.applying(t), CGPoint(22, 4));
    EXPECT_EQ(CGSize(1, 2).applying(t), CGSize(2, 4));
    EXPECT_EQ(p.applying(t.scaledBy(3, 1)), CGPoint(26, 4));
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
