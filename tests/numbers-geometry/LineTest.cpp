#include "Printing.h"
#include <tests/Testing.h>

#include <zorvan/numbers-geometry/Angle.h>
#include <zorvan/numbers-geometry/CardinalDirection.h>
#include <zorvan/numbers-geometry/HOrientation.h>
#include <zorvan/numbers-geometry/Line.h>
#include <zorvan/numbers-geometry/Orientation.h>
#include <zorvan/numbers-geometry/Segment.h>
#include <zorvan/numbers-geometry/Triangle.h>
#include <zorvan/numbers-geometry/VOrientation.h>

TEST(Line, IsSignedAndMeetsUnlessParallel) {
    const Line axis(CGPoint(0, 0), CGPoint(1, 0));
    EXPECT_EQ(axis, Line(0, 1, 0));
    EXPECT_EQ(Line(CGPoint(1, 1), CGPoint(1, 1)), Line(0, 0, 0));
    Line moved = axis;
    moved.offsetBy(3);
    EXPECT_EQ(moved.distance({5, -2}), 1);
    const Line rising(CGPoint(0, 0), CGPoint(1, 1));
    const auto meeting = rising.intersects(Line(CGPoint(0, 1), CGPoint(1, 0)));
    ASSERT_TRUE(meeting);
    EXPECT_TRUE(meeting->overlap({0.5, 0.5}, 1e-15));
    EXPECT_EQ(rising.intersects(Line(CGPoint(0, 5), CGPoint(1, 6))), std::nullopt);
}

TEST(Segment, Measures) {
    const Segment s({0, 0}, {3, 4});
    EXPECT_EQ(s.midpoint(), CGPoint(1.5, 2));
    EXPECT_EQ(s.parameter({-3, -4}), 1); // a distance, so never negative
    EXPECT_EQ(s.normal(), CGPoint(-0.8, 0.6));
    EXPECT_EQ(Segment::zero.normal(), CGPoint(0, 0));
    EXPECT_EQ(s.reversed().boundingRect(), CGRect(0, 0, 3, 4));
    EXPECT_EQ(Segment({1, 1}, {1, 1}).distance({4, 5}), (Segment::Distance{0, 0}));
    EXPECT_EQ(s.with({.end = {1, 1}}).with({.start = {5, 5}}), Segment({5, 5}, {1, 1}));
}

TEST(Segment, ComparesInBothDirections) {
    const Segment s({0, 0}, {3, 4}), near({3.0001, 4}, {0, 0});
    EXPECT_TRUE(s.isEqualToReversedSegment(s.reversed()));
    EXPECT_FALSE(s.isEqualToSegment(s.reversed()));
    EXPECT_TRUE(s.isSimilarToReversed(near, 3));
    EXPECT_FALSE(s.isSimilarTo(near, 3));
    EXPECT_TRUE(s.overlapReversed(near, 0.001));
    EXPECT_FALSE(s.overlap(near, 0.001));
    EXPECT_TRUE(Segment({0, 0}, {0, 5}).isColinearTo(Segment({0, 0}, {5, 0}), 0.01));
    EXPECT_TRUE(Segment({0, 0}, {1, 2}).isColinearTo(Segment({5, 5}, {7, 9}), 0));
    EXPECT_FALSE(Segment({0, 0}, {1, 2}).isColinearTo(Segment({0, 0}, {1, 1}), 0.5));
    EXPECT_FALSE(Segment({0, 0}, {4, 4}).contains({2, 2.001}));
}

TEST(Segment, MeetsHorizontalLines) {
    EXPECT_EQ(Segment({1, 0}, {5, 2}).intersects({.horizontal = 1.5}), CGPoint(4, 1.5));
    for (const double outside : {-0.1, 2.1})
        EXPECT_EQ(Segment({0, 0}, {4, 2}).intersects({.horizontal = outside}), std::nullopt);
    EXPECT_EQ(Segment({3, 2}, {3, 0}).intersects({.horizontal = 2.000005}), CGPoint(3, 2.000005));
    EXPECT_EQ(Segment({1, 2}, {5, 2}).intersects({.horizontal = 2}), CGPoint(1, 2));
}

// Small whole coordinates, so that ends often touch, paths are often parallel, and integers tell
// exactly what is expected.
TEST(Segment, MeetsAsIntegersTell) {
    std::mt19937_64 random(17);
    const auto number = [&] { return std::uniform_int_distribution<>(-5, 5)(random); };
    int meetings = 0, touches = 0;
    for (int i = 0; i < 50000; ++i) {
        const int px = number(), py = number(), qx = number(), qy = number();
        const int rx = number(), ry = number(), sx = number(), sy = number();
        const Segment a({px + 0., py + 0.}, {px + rx + 0., py + ry + 0.});
        const Segment b({qx + 0., qy + 0.}, {qx + sx + 0., qy + sy + 0.});
        const int den = rx * sy - ry * sx;
        const int tn = sx * (py - qy) - sy * (px - qx), un = rx * (py - qy) - ry * (px - qx);
        const bool open = den < 0 && den < tn && tn < 0 && den < un && un < 0;
        const bool closed = den > 0 && 0 <= tn && tn <= den && 0 <= un && un <= den;
        const auto found = a.findIntersection(b);
        ASSERT_EQ(found.has_value(), open || closed) << i;
        const CGPoint at = a.point(0.5);
        const double offLine =
            (b.start - at).x * (b.end - at).y - (b.start - at).y * (b.end - at).x;
        ASSERT_EQ(b.contains(at), offLine == 0 && b.boundingRect().contains(at));
        const auto [away, along] = b.distance(at);
        ASSERT_NEAR(away * b.length(), std::abs(offLine), 1e-12);
        ASSERT_NEAR(b.point(along).distance(at), sx == 0 && sy == 0 ? b.start.distance(at) : away,
                    1e-12);
        if (!found)
            continue;
        ++meetings;
        touches += tn == 0 || tn == den || un == 0 || un == den;
        ASSERT_NEAR(found->param1, double(tn) / den, 1e-12);
        ASSERT_NEAR(found->param2, double(un) / den, 1e-12);
        ASSERT_TRUE(found->point.overlap(b.point(found->param2), 1e-12));
        ASSERT_EQ(found->point, a.intersects(b));
        if (ry != 0) {
            const auto crossing = a.intersects({.horizontal = found->point.y});
            ASSERT_TRUE(crossing && crossing->overlap(found->point, 1e-12));
        }
    }
    EXPECT_GT(meetings, 2000);
    EXPECT_GT(touches, 500);
}

TEST(Triangle, TurnsAsIntegersTell) {
    using State = Triangle::CollinearityState;
    std::mt19937_64 random(19);
    const auto number = [&] { return std::uniform_int_distribution<>(-4, 4)(random); };
    int seen[4] = {};
    for (int i = 0; i < 20000; ++i) {
        const int x1 = number(), y1 = number(), x2 = number(), y2 = number();
        const int twice = x1 * y2 - y1 * x2; // from a corner at the origin, moved about below
        const CGPoint a(number(), number()), b = a + CGPoint(x1, y1), c = a + CGPoint(x2, y2);
        const Triangle t(a, b, c);
        const bool isPoint = x1 == 0 && y1 == 0 && x2 == 0 && y2 == 0;
        const State state = isPoint      ? State::point
                            : twice == 0 ? State::line
                            : twice < 0  ? State::clockwiseTurn
                                         : State::counterClockwiseTurn;
        ASSERT_EQ(t.signedArea() * 2, twice);
        ASSERT_EQ(t.collinearity(6), state);
        ++seen[static_cast<int>(state)];
    }
    EXPECT_THAT(seen, testing::Each(testing::Gt(2)));
}

TEST(Triangle, IsNearOnlyWhenAllCornersAre) {
    const Triangle t({0, 0}, {4, 0}, {0, 4});
    const CGPoint step(0.5, 0);
    for (const Triangle& moved : {Triangle(t.a + step, t.b, t.c), Triangle(t.a, t.b + step, t.c),
                                  Triangle(t.a, t.b, t.c + step)}) {
        EXPECT_TRUE(t.overlap(moved, 0.5));
        EXPECT_FALSE(t.overlap(moved, 0.4) || t.isSimilarTo(moved, 1));
    }
}

TEST(Triangle, ClassifiesTurns) {
    using State = Triangle::CollinearityState;
    EXPECT_EQ(Triangle({0, 0}, {1e-7, 0}, {0, -1e-7}).collinearity(6), State::point);
    EXPECT_EQ(Triangle({0, 0}, {1, 0}, {0, 1e-6}).collinearity(6), State::counterClockwiseTurn);
    EXPECT_EQ(Triangle({0, 0}, {1, 0}, {0, 0.9e-6}).collinearity(6), State::line);
    EXPECT_EQ(1 - Triangle({0, 0}, {1, 1}, {2, 2}) * 2, Triangle({1, 1}, {-1, -1}, {-3, -3}));
}

TEST(Angle, StaysWithinOneTurn) {
    EXPECT_DOUBLE_EQ(Angle({.degrees = -90}).degrees(), 270);
    EXPECT_EQ(Angle({.radians = -1e-20}).value(), 0);
    for (double x = -50; x < 50; x += 0.01) {
        const Angle angle({.radians = x});
        ASSERT_TRUE(angle.value() >= 0 && angle.value() < PI_2_1) << x;
        ASSERT_NEAR(std::sin(angle.value()), std::sin(x), 1e-13);
    }
    EXPECT_TRUE(std::isnan(Angle({.radians = INFINITY}).value()));
    // A sum is brought back into the turn, an addition in place is not.
    const Angle four({.radians = 4}), three({.radians = 3});
    EXPECT_NEAR((four + three - Angle({.radians = 6.5})).value(), 0.5, 1e-12);
    Angle sum = four;
    sum += three;
    sum -= Angle({.radians = 0.5});
    EXPECT_EQ(sum.value(), 6.5);
}

TEST(Angle, HasComplementsATypeAndAText) {
    EXPECT_NEAR(Angle({.degrees = 100}).complementary().degrees(), 80, 1e-12);
    EXPECT_NEAR(Angle({.degrees = 200}).supplementary().degrees(), 160, 1e-12);
    EXPECT_NEAR(Angle({.degrees = 30}).explementary().degrees(), 330, 1e-12);
    EXPECT_EQ(Angle::zero.explementary(), Angle::zero);
    const std::pair<double, Angle::Type> table[] = {
        {0, Angle::Type::zero},          {std::nextafter(PI_1_2, 0), Angle::Type::acute},
        {PI_1_2, Angle::Type::right},    {std::nextafter(PI_1_2, 2), Angle::Type::obtuse},
        {PI_1_1, Angle::Type::straight}, {PI_3_2, Angle::Type::reflex},
        {NAN, Angle::Type::reflex}};
    for (const auto& [radians, type] : table)
        EXPECT_EQ(Angle({.radians = radians}).type(), type) << radians;
    EXPECT_EQ(Angle::right.description(), "90.0 deg");
    EXPECT_EQ(PI_1_3, 1.0471975511965979); // a division of doubles is one step off
    EXPECT_EQ(PI_3_4, 2.356194490192345);
}

TEST(Directions, TurnAndToggle) {
    Orientation way = Orientation::up;
    for (const Orientation next :
         {Orientation::right, Orientation::down, Orientation::left, Orientation::up}) {
        EXPECT_EQ(way.left_().right_(), way);
        way.turnRight();
        EXPECT_EQ(way, next);
    }
    EXPECT_EQ(CardinalDirection::north.right(), CardinalDirection::east);
    EXPECT_EQ(CardinalDirection::east.left(), CardinalDirection::north);
    HOrientation side = HOrientation::left;
    side.toggle();
    EXPECT_EQ(side, HOrientation::make({.rawValue = 1}));
    EXPECT_EQ(HOrientation::make({.rawValue = 2}), std::nullopt);
    EXPECT_EQ(VOrientation::make({.rawValue = -1}), std::nullopt);
    EXPECT_EQ(Orientation::left.rawValue(), 3);
    EXPECT_EQ(Orientation::Case(Orientation::left), Orientation::Case::left);
    EXPECT_EQ(CardinalDirection::make({.rawValue = 3}), CardinalDirection::south);
}
