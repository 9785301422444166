#include "Printing.h"
#include <tests/Testing.h>

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/RectCorners.h>

namespace {

const CGRect ten({.square = 10});

// Small whole coordinates, so that edges often coincide and sides are often zero or negative.
struct RandomRects {
    std::mt19937_64 random{11};
    double number() { return std::uniform_int_distribution<>(-6, 6)(random); }
    CGPoint point() { return {number(), number()}; }
    CGRect rect() { return {point(), point().size()}; }
};

} // namespace

TEST(CGRect, AccessorsReadTheStandardisedRectangle) {
    const CGRect r(10, 20, -4, -6);
    EXPECT_EQ(r.standardized(), CGRect({.p1 = {10, 20}, .p2 = {6, 14}}));
    EXPECT_EQ(r.center(), CGPoint(8, 17));
    const CGRect inexact(0.1, 0.3, -0.7, -1e20); // whose stored edges no sum gives back
    EXPECT_EQ(inexact.maxX(), inexact.standardized().maxX());
    EXPECT_NE(inexact.maxX(), inexact.x());
    EXPECT_EQ(inexact.topRight(), inexact.standardized().topRight());
    EXPECT_EQ(CGRect({.width = std::int64_t{-2}, .height = 3}).area(), -6);
    EXPECT_EQ(CGRect(0, 0, -3.5, 2.4).roundIntWidthHeight(), std::pair(4L, 2L));
    const CGRect ratios(5, 8, 2, -4);
    EXPECT_THAT(
        (std::array{ratios.whRatio(), ratios.xwRatio(), ratios.yhRatio(), ratios.xyRatio()}),
        testing::ElementsAre(0.5, 2.5, 2, 0.625));
    EXPECT_THAT(
        (std::array{ratios.hwRatio(), ratios.wxRatio(), ratios.hyRatio(), ratios.yxRatio()}),
        testing::ElementsAre(2, 0.4, 0.5, 1.6));
    EXPECT_FALSE(std::signbit(CGRect(0, 0, -0.0, 1).width()));
}

TEST(CGRect, NamesItsAnchors) {
    const CGRect r({.size = {4, 2}});
    const std::pair<RectAnchor, CGPoint> table[] = {
        {RectAnchor::topLeft, {0, 2}},     {RectAnchor::topRight, {4, 2}},
        {RectAnchor::bottomRight, {4, 0}}, {RectAnchor::bottomLeft, {0, 0}},
        {RectAnchor::middleLeft, {0, 1}},  {RectAnchor::topCenter, {2, 2}},
        {RectAnchor::middleRight, {4, 1}}, {RectAnchor::bottomCenter, {2, 0}}};
    for (const auto& [anchor, point] : table) {
        EXPECT_EQ(r.point(anchor), point);
        EXPECT_EQ(r.square(anchor, 2).center(), point);
        EXPECT_EQ(r.rect(anchor, {2, 4}), CGRect(point.x - 1, point.y - 2, 2, 4));
    }
}

TEST(CGRect, ReplacesParts) {
    EXPECT_EQ(ten.with({.width = 3}), CGRect(0, 0, 3, 10));
    EXPECT_EQ(ten.adding({.y = 1, .w = 2}).adding({.origin = CGPoint(1, 2)}), CGRect(1, 3, 12, 10));
    EXPECT_EQ(ten.shifting({.x = 2}).shifting({.y = 3}), CGRect(2, 3, 8, 7));
    const CGRect r(10, 10, -4, -6); // negative sides tell what is stored from what is standardised
    EXPECT_EQ(r.with({.lw = 3}), CGRect(10, 10, 3, 6));
    EXPECT_EQ(r.with({.rw = 3}), CGRect(3, 10, 3, -6));
    EXPECT_EQ(r.with({.bh = 3}), CGRect(10, 10, 4, 3));
    EXPECT_EQ(r.with({.th = 3}), CGRect(10, 1, -4, 3));
    EXPECT_EQ(r.with({.cw = 2}), CGRect(11, 10, 2, -6));
    EXPECT_EQ(r.with({.ch = 2}), CGRect(10, 12, -4, 2));
    EXPECT_EQ(r.with({.y = 1}).with({.x = 0, .h = 5}), CGRect(0, 1, 4, 5));
    EXPECT_EQ(r.with({.origin = CGPoint()}), CGRect(0, 0, -4, -6));
    EXPECT_EQ(r.with({.size = CGSize(1, 2)}), CGRect(10, 10, 1, 2));
    EXPECT_EQ(2 * r, CGRect(20, 20, 8, 12));
    CGRect doubled = r;
    doubled *= 2;
    EXPECT_EQ(doubled, CGRect(20, 20, -8, -12));
    EXPECT_EQ(-r, CGRect(-10, -10, 4, 6));
}

TEST(CGRect, ShrinksFitsAndFills) {
    EXPECT_EQ(CGRect(0, 0, 100, 100).shrunkBy({.percent = 0.2}), CGRect(10, 10, 80, 80));
    EXPECT_EQ(ten.shrunkBy({.dx = -1, .dy = 2}), CGRect(-1, 2, 12, 6));
    EXPECT_TRUE(ten.shrunkBy({.delta = 6}).isNull());
    EXPECT_EQ(CGRect(10, 10, -10, -10).insetBy(1, 1), CGRect(1, 1, 8, 8));
    for (const CGRect& r : {CGRect(0, 0, 10, 4), CGRect(0, 0, 4, 10)}) {
        EXPECT_EQ(r.innerSquare(), r.innerFittingRect(1));
        EXPECT_EQ(r.outerSquare(), r.innerFillingRect(1));
    }
    EXPECT_EQ(ten.minMax({15, -5}), CGPoint(10, 0));
    EXPECT_EQ(ten.scaledBy({2, 3}), CGRect(0, 0, 20, 30));
}

TEST(CGRect, MutatingFormsDoWhatTheCopyingOnesReturn) {
    CGRect r(1, 2, 4, 2);
    r.moveBy({1, 1});
    r.shrinkBy({.delta = 0.5});
    EXPECT_EQ(r, CGRect(2.5, 3.5, 3, 1));
    r.fit(CGRect(0, 0, 30, 30));
    EXPECT_EQ(r, CGRect(0, 10, 30, 10));
    r.fill(ten);
    EXPECT_EQ(r, CGRect(-10, 0, 30, 10));
    r.center(CGRect(0, 0, 100, 100));
    EXPECT_EQ(r, CGRect(35, 45, 30, 10));
    r.scaleBy(2);
    r.apply(NSEdgeInsets(1, 2, 3, 4));
    EXPECT_EQ(r, CGRect(72, 93, 54, 16));
    r.apply(CGAffineTransform(0, 1, -1, 0, 0, 0));
    EXPECT_EQ(r, CGRect(-109, 72, 16, 54));
    // It is expanded on each axis from the origin.
    for (const auto& [point, expanded] : {std::pair(CGPoint(4, 4), CGRect(0, 0, 4, 4)),
                                          {{-2, 12}, {-2, 0, 12, 12}},
                                          {{0, 0}, ten}}) {
        r = ten;
        r.expand(point);
        EXPECT_EQ(r, expanded);
    }
    r = CGRect(5, 5, -4, 2);
    r.expand({5, 5});
    EXPECT_EQ(r, CGRect(5, 5, -4, 2)) << "no edge moves to where it is";
}

TEST(CGRect, DraggedHandleEndsUnderThePoint) {
    CGRect crossed = ten; // so the handle is mirrored
    EXPECT_EQ(crossed.move(RectAnchor::bottomLeft, {2, 15}), RectAnchor::topLeft);
    EXPECT_EQ(crossed, CGRect(2, 10, 8, 5));
    RandomRects source;
    for (int i = 0; i < 5000; ++i) {
        const CGRect before = source.rect().standardized();
        CGRect r = before;
        const RectAnchor anchor = RectAnchor::allValues[static_cast<std::size_t>(i) % 8];
        const CGPoint opposite = r.point(anchor.opposed()), to = source.point();
        const RectAnchor now = r.move(anchor, to);
        EXPECT_EQ(r, r.standardized());
        EXPECT_EQ(anchor.isCenter() ? r.point(now).y : r.point(now).x,
                  anchor.isCenter() ? to.y : to.x);
        EXPECT_EQ(anchor.isMiddle() ? r.point(now).x : r.point(now).y,
                  anchor.isMiddle() ? to.x : to.y);
        if (anchor.isCorner()) {
            EXPECT_EQ(r.point(now.opposed()), opposite);
        }
        if (anchor.isMiddle()) {
            EXPECT_EQ(r.size.height, before.size.height);
        }
    }
}

TEST(CGRect, SetAlgebraHolds) {
    RandomRects source;
    for (int i = 0; i < 20000; ++i) {
        const CGRect a = source.rect(), b = source.rect();
        const CGPoint p = source.point() + CGPoint({.square = 0.5});
        const CGRect shared = a.intersection(b);
        EXPECT_EQ(shared, b.intersection(a));
        EXPECT_EQ(shared.isNull(), !a.intersects(b));
        EXPECT_EQ(shared.contains(p), a.contains(p) && b.contains(p));
        EXPECT_TRUE(a.contains(shared));
        const CGRect both = a.union_(b);
        EXPECT_EQ(both, b.union_(a));
        EXPECT_TRUE(both.contains(a) && both.contains(b));
        EXPECT_EQ(a.contains(b), both == a.standardized());
        EXPECT_EQ(a.union_(CGRect::null), a.standardized());
        EXPECT_EQ(a.applying(CGAffineTransform::identity), a.standardized());
    }
    EXPECT_FALSE(ten.intersects(CGRect(10, 0, 5, 5)));
    EXPECT_FALSE(CGRect::null.contains(CGPoint(0, 0)));
    EXPECT_EQ(CGRect::null.insetBy(-5, -5), CGRect::null);
}

TEST(CGRect, ComparesAndHashesByEdges) {
    EXPECT_TRUE(ten.isSimilarTo(CGRect(0.001, 0, 10, 10), 2));
    EXPECT_FALSE(ten.isSimilarTo(CGRect(0, 0, 10, 10.1), 2));
    EXPECT_FALSE(ten.overlap(CGRect(10, 10, -10, -10), 1)); // stored values, not edges
    std::unordered_set<CGRect> set{ten, CGRect(-0.0, 0, 10, 10), CGRect(0, 0, 10, 11)};
    EXPECT_EQ(set.size(), 2U);
    EXPECT_EQ(std::hash<CGRect>{}(ten), std::hash<CGRect>{}(CGRect(10, 10, -10, -10)));
}

TEST(RectAnchor, ClassifiesAndMirrors) {
    for (const RectAnchor anchor : RectAnchor::allValues) {
        EXPECT_EQ(anchor.isCorner() + anchor.isMiddle() + anchor.isCenter(), 1);
        EXPECT_EQ(RectAnchor::make({.rawValue = anchor.rawValue()}), anchor);
        RectAnchor mirrored = anchor;
        mirrored.flipVertical();
        EXPECT_EQ(mirrored.isTop(), anchor.isBottom());
        EXPECT_EQ(mirrored.isLeft(), anchor.isLeft());
        mirrored.flipHorizontal();
        EXPECT_EQ(mirrored.isRight(), anchor.isLeft());
        EXPECT_EQ(mirrored, anchor.opposed());
    }
    EXPECT_EQ(RectAnchor::make({.rawValue = 8}), std::nullopt);
    EXPECT_EQ(RectAnchor::bottomCenter.rawValue(), 7);
}

TEST(RectCorners, IsASet) {
    const RectCorners top({RectCorners::topLeft, RectCorners::topRight});
    EXPECT_EQ(top.rawValue(), 5);
    EXPECT_EQ(top.flipped().rawValue(), 10);
    EXPECT_EQ(RectCorners::allValues.symmetricDifference(top), top.flipped());
    EXPECT_TRUE(top.isDisjoint(top.flipped()));
    EXPECT_TRUE(top.isStrictSubset(RectCorners::allValues));
    EXPECT_FALSE(top.isStrictSubset(top));
    EXPECT_EQ(RectCorners({.rawValue = -1}).flipped(), RectCorners::allValues);
    RectCorners set = top | RectCorners::bottomLeft;
    set.insert(RectCorners::bottomRight);
    set.remove(RectCorners::topLeft);
    EXPECT_EQ(set.rawValue(), 14);
    EXPECT_FALSE(set.contains(top));
}
