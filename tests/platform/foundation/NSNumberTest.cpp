#include <tests/Testing.h>

#include <zorvan/platform/foundation/NSNumber.h>

TEST(NSNumber, ClampsRealsOutsideTheIntegerRange) {
    const std::pair<double, std::int64_t> table[] = {
        {2.9, 2},
        {-2.9, -2},
        {9223372036854775808.0, std::numeric_limits<std::int64_t>::max()},
        {-9223372036854775808.0, std::numeric_limits<std::int64_t>::min()},
        {-1e300, std::numeric_limits<std::int64_t>::min()},
        {INFINITY, std::numeric_limits<std::int64_t>::max()},
        {NAN, 0},
    };
    for (const auto& [real, integer] : table)
        EXPECT_EQ(NSNumber(real).int64Value(), integer) << real;
}

TEST(NSNumber, ComparesByValueAcrossKinds) {
    EXPECT_EQ(NSNumber(true), NSNumber(1));
    EXPECT_EQ(NSNumber(1), NSNumber(1.0));
    EXPECT_NE(NSNumber(1), NSNumber(1.5));
    // Two integers that share their nearest double are still different numbers.
    EXPECT_NE(NSNumber(std::int64_t{9007199254740993}), NSNumber(std::int64_t{9007199254740992}));
}
