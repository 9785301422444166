#include "Printing.h"
#include <tests/Testing.h>

#include <zorvan/numbers-geometry/Interval.h>

TEST(Interval, IsMadeFromEndsOrValues) {
    EXPECT_EQ(Interval({.value1 = 3, .value2 = 1}), Interval(1, 3));
    EXPECT_FALSE(Interval({.min = 3, .max = 1}).isValid());
    EXPECT_FALSE(Interval(-INFINITY, 0).isClosed());
    EXPECT_TRUE(Interval::unit.isClosed());
    EXPECT_EQ(Interval(1, 2).with({.min = 0}).with({.max = 5}).description(), "[0.0, 5.0]");
    // Ends that touch share a point.
    EXPECT_EQ(Interval::intersection({0, 1}, {1, 2}), Interval(1, 1));
    EXPECT_TRUE(Interval(0, 1).intersects(Interval(1, 2)));
    EXPECT_FALSE(Interval(0, 1).intersects(Interval(2, 3)));
    EXPECT_EQ(Interval::union_({0, 1}, {2, 3}), Interval(0, 3));
    EXPECT_TRUE(Interval(0, 1).contains(1));
    // Both ends are compared.
    EXPECT_FALSE(Interval(1.001, 2).isSimilarTo({1.002, 3}, 2));
    EXPECT_TRUE(Interval(1.001, 1.002).oneEndPointIsSimilarTo(1, 2));
    EXPECT_TRUE(Interval(1, 2).overlap({2, 1}, 1));
    EXPECT_FALSE(Interval(1, 2).overlap({2, 0.5}, 1));
}

TEST(Interval, SplitsAndExpands) {
    const Interval i(2, 10);
    EXPECT_EQ(i.bissect(), std::pair(Interval(2, 6), Interval(6, 10)));
    EXPECT_EQ(i.scaleNormalizedValue(1.5), 14);
    using Parts = std::pair<std::optional<Interval>, std::optional<Interval>>;
    EXPECT_EQ(i.bissectAtValue(10), Parts(Interval(2, 10), Interval(10, 10)));
    EXPECT_EQ(i.bissectAtValue(11), Parts(i, std::nullopt));
    EXPECT_EQ(i.bissectAtValue(-1), Parts(std::nullopt, i));
    EXPECT_EQ(Interval(1, 3).restrictValue(5), 3);
    EXPECT_EQ(Interval(1, 3).restrictValue(0), 1);
    EXPECT_EQ(Interval(3, 1).restrictValue(2), 1); // the maximum is looked at first
    EXPECT_EQ(Interval(3, 1).expandingToValue(2), Interval(2, 2));
    // It has converged when the ends share a floor.
    EXPECT_FALSE(Interval(0.1, 0.9).hasConverged(2)); // 102 and 921
    EXPECT_TRUE(Interval(0.10001, 0.10002).hasConverged(2));
}
