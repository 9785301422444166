#include <zorvan/text/CMTimeArithmetic.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>

using namespace zorvan;

namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int32_t top = kCMTimeMaxTimescale;

CMTime rounded(std::int64_t value, std::int32_t timescale) {
    CMTime time = CMTimeMake(value, timescale);
    time.flags |= kCMTimeFlags_HasBeenRounded;
    return time;
}

CMTime inEpoch(std::int64_t epoch) { return CMTimeMakeWithEpoch(1, 1, epoch); }

struct Fields {
    CMTime time;
    friend bool operator==(const Fields& a, const Fields& b) {
        return a.time.value == b.time.value && a.time.timescale == b.time.timescale &&
               a.time.flags == b.time.flags && a.time.epoch == b.time.epoch;
    }
    friend std::ostream& operator<<(std::ostream& stream, const Fields& fields) {
        return stream << fields.time.value << '/' << fields.time.timescale << " flags "
                      << fields.time.flags << " epoch " << fields.time.epoch;
    }
};

/// To the last field, since equal times may differ in their timescale.
#define EXPECT_SAME(a, b) EXPECT_EQ(Fields{a}, Fields{b})

} // namespace

TEST(CMTimeArithmetic, addsInTheLeastCommonTimescale) {
    struct {
        CMTime a, b, sum, difference;
    } table[] = {
        {CMTimeMake(1, 600), CMTimeMake(2, 600), CMTimeMake(3, 600), CMTimeMake(-1, 600)},
        {CMTimeMake(1, 4), CMTimeMake(1, 6), CMTimeMake(5, 12), CMTimeMake(1, 12)},
        {CMTimeMake(1, 1), CMTimeMake(1, 1000), CMTimeMake(1001, 1000), CMTimeMake(999, 1000)},
        // An operand that was rounded marks the result.
        {rounded(1, 2), CMTimeMake(1, 2), rounded(2, 2), rounded(0, 2)},
        // The least common multiple is no timescale any more.
        {CMTimeMake(1, top), CMTimeMake(1, 2), rounded(1073741825, top), rounded(-1073741823, top)},
        // The timescale is halved while the value overflows; halves are rounded away from zero.
        {CMTimeMake(largest, 600), CMTimeMake(largest, 600), CMTimeMake(largest, 300),
         CMTimeMake(0, 600)},
        {CMTimeMake(largest, 2), CMTimeMake(2, 2), rounded(4611686018427387905, 1),
         CMTimeMake(largest - 2, 2)},
        {CMTimeMake(smallest, 4), CMTimeMake(-1, 4), rounded(smallest / 2 - 1, 2),
         CMTimeMake(smallest + 1, 4)},
        {CMTimeMake(largest, 1), CMTimeMake(1, 1), kCMTimePositiveInfinity,
         CMTimeMake(largest - 1, 1)},
        {CMTimeMake(smallest, 1), CMTimeMake(-1, 1), kCMTimeNegativeInfinity,
         CMTimeMake(smallest + 1, 1)},
    };
    for (const auto& row : table) {
        EXPECT_SAME(row.a + row.b, row.sum) << Fields{row.a} << " and " << Fields{row.b};
        EXPECT_SAME(row.b + row.a, row.sum) << Fields{row.b} << " and " << Fields{row.a};
        EXPECT_SAME(row.a - row.b, row.difference) << Fields{row.a} << " and " << Fields{row.b};
    }
}

TEST(CMTimeArithmetic, addsMarksAndEpochs) {
    const CMTime one = CMTimeMake(1, 1);
    const CMTime invalid = kCMTimeInvalid, unknown = kCMTimeIndefinite;
    const CMTime plus = kCMTimePositiveInfinity, minus = kCMTimeNegativeInfinity;
    struct {
        CMTime a, b, sum, difference;
    } table[] = {
        {invalid, plus, invalid, invalid}, {one, invalid, invalid, invalid},
        {plus, one, plus, plus},           {one, plus, plus, minus},
        {minus, one, minus, minus},        {one, minus, minus, plus},
        {plus, plus, plus, unknown},       {minus, minus, minus, unknown},
        {plus, minus, unknown, plus},      {minus, plus, unknown, minus},
        {unknown, one, unknown, unknown},  {one, unknown, unknown, unknown},
        {plus, unknown, plus, plus},       {unknown, plus, plus, minus},
    };
    for (const auto& row : table) {
        EXPECT_SAME(row.a + row.b, row.sum) << Fields{row.a} << " and " << Fields{row.b};
        EXPECT_SAME(row.a - row.b, row.difference) << Fields{row.a} << " and " << Fields{row.b};
    }
    EXPECT_EQ((inEpoch(0) + inEpoch(5)).epoch, 5);
    EXPECT_EQ((inEpoch(5) - inEpoch(0)).epoch, 5);
    EXPECT_EQ((inEpoch(5) - inEpoch(5)).epoch, 0);
    EXPECT_FALSE((inEpoch(5) + inEpoch(6)).isValid());
}

TEST(CMTimeArithmetic, ordersEveryKind) {
    // Each one is below the next.
    const CMTime ladder[] = {
        kCMTimeNegativeInfinity,
        CMTimeMake(smallest, 1),
        CMTimeMake(-1, top),
        kCMTimeZero,
        CMTimeMake(largest - 1, largest >> 32),
        CMTimeMake(largest, largest >> 32),
        CMTimeMake(largest, 1),
        CMTimeMakeWithEpoch(-1, 1, 1),
        CMTimeMakeWithEpoch(0, 1, 2),
        kCMTimeIndefinite,
        kCMTimePositiveInfinity,
        kCMTimeInvalid,
    };
    for (std::size_t i = 0; i < std::size(ladder); ++i)
        for (std::size_t k = 0; k < std::size(ladder); ++k)
            EXPECT_EQ(CMTimeCompare(ladder[i], ladder[k]), (i > k) - (i < k)) << i << ' ' << k;
    EXPECT_EQ(CMTimeMake(1, 2), rounded(300, 600));
    EXPECT_EQ(CMTimeMake(1, 0), kCMTimeInvalid);
    // One part in 2^62 apart: a comparison in double precision would call them equal.
    EXPECT_LT(CMTimeMake(top - 1, top), CMTimeMake(top, top - 1));
    EXPECT_LT(CMTimeMake(4611686011984936962, top), CMTimeMake(2147483646, 1) + CMTimeMake(1, top));
    EXPECT_SAME(CMTimeMinimum(CMTimeMake(1, 2), CMTimeMake(2, 4)), CMTimeMake(1, 2));
    EXPECT_SAME(CMTimeMaximum(CMTimeMake(1, 2), CMTimeMake(2, 4)), CMTimeMake(1, 2));
    EXPECT_SAME(CMTimeMaximum(CMTimeMake(1, 2), kCMTimeIndefinite), kCMTimeIndefinite);
}

TEST(CMTimeArithmetic, convertsByEveryMethod) {
    using enum CMTimeRoundingMethod;
    struct {
        std::int64_t value;
        std::int32_t from, to;
        std::int64_t half, zero, away, neverToZero, up, down;
    } table[] = {
        {3, 2, 1, 2, 1, 2, 1, 2, 1},
        {-3, 2, 1, -2, -1, -2, -1, -1, -2},
        {4, 3, 1, 1, 1, 2, 1, 2, 1},
        {-4, 3, 1, -1, -1, -2, -1, -1, -2},
        {5, 3, 1, 2, 1, 2, 1, 2, 1},
        {1, 3, 1, 0, 0, 1, 1, 1, 0},
        {-1, 3, 1, 0, 0, -1, -1, 0, -1},
        {1, 3, 4, 1, 1, 2, 2, 2, 1},
        {-1, 3, 4, -1, -1, -2, -2, -1, -2},
        {6, 4, 2, 3, 3, 3, 3, 3, 3},
        {largest, 3, 3, largest, largest, largest, largest, largest, largest},
    };
    for (const auto& row : table) {
        const std::pair<CMTimeRoundingMethod, std::int64_t> results[] = {
            {roundHalfAwayFromZero, row.half},     {roundTowardZero, row.zero},
            {roundAwayFromZero, row.away},         {neverToZero, row.neverToZero},
            {roundTowardPositiveInfinity, row.up}, {roundTowardNegativeInfinity, row.down}};
        for (const auto& [method, value] : results) {
            const CMTime time = CMTimeMake(row.value, row.from);
            const CMTime result = CMTimeConvertScale(time, row.to, method);
            EXPECT_EQ(result.value, value)
                << row.value << '/' << row.from << " by " << static_cast<std::uint32_t>(method);
            EXPECT_EQ(result.timescale, row.to);
            EXPECT_EQ(result.hasBeenRounded(), result != time);
        }
    }
    EXPECT_TRUE(CMTimeConvertScale(CMTimeMake(smallest, 1), 2, default_).isNegativeInfinity());
    EXPECT_FALSE(CMTimeConvertScale(kCMTimeZero, 0, default_).isValid());
    EXPECT_SAME(CMTimeConvertScale(rounded(1, 2), 4, default_), rounded(2, 4));
    EXPECT_SAME(CMTimeConvertScale(kCMTimeIndefinite, 4, default_), kCMTimeIndefinite);
    EXPECT_EQ(CMTimeConvertScale(inEpoch(3), 4, default_).epoch, 3);
}

TEST(CMTimeArithmetic, multipliesByIntegers) {
    EXPECT_SAME(CMTimeMake(3, 600) * 200, CMTimeMake(600, 600));
    EXPECT_SAME(-2 * CMTimeMake(3, 600), CMTimeMake(-6, 600));
    EXPECT_SAME(CMTimeMake(largest, 600) * 4, CMTimeMake(largest, 150));
    EXPECT_SAME(CMTimeMake(largest, 3) * 2, rounded(6148914691236517205, 1));
    EXPECT_SAME(CMTimeMake(largest, 1) * 2, kCMTimePositiveInfinity);
    EXPECT_SAME(CMTimeMake(smallest, 1) * std::numeric_limits<std::int32_t>::min(),
                kCMTimePositiveInfinity);
    EXPECT_SAME(CMTimeMake(smallest, 1) * 1, CMTimeMake(smallest, 1));
    EXPECT_SAME(kCMTimeNegativeInfinity * -1, kCMTimePositiveInfinity);
    EXPECT_SAME(kCMTimePositiveInfinity * 0, kCMTimeIndefinite);
    EXPECT_SAME(kCMTimeIndefinite * 2, kCMTimeIndefinite);
    EXPECT_SAME(kCMTimeInvalid * 2, kCMTimeInvalid);
}

TEST(CMTimeArithmetic, multipliesByRatios) {
    struct {
        CMTime time;
        std::int32_t multiplier, divisor;
        CMTime result;
    } table[] = {
        {CMTimeMake(10, 1), 1, 4, CMTimeMake(5, 2)},
        {CMTimeMake(600, 600), 1, 2, CMTimeMake(300, 600)}, // keeps its timescale where it can
        {CMTimeMake(1, 600), 1, 7, CMTimeMake(1, 4200)},
        {CMTimeMake(1, 600), -2, 3, CMTimeMake(-2, 1800)},
        {CMTimeMake(1, 600), 2, -3, CMTimeMake(-2, 1800)},
        {rounded(1, 2), 1, 2, rounded(1, 4)},
        {CMTimeMake(smallest, 1), 1, 1, CMTimeMake(smallest, 1)},
        {CMTimeMake(smallest, 1), -1, 1, kCMTimePositiveInfinity},
        {CMTimeMake(largest, 1), 3, 2, kCMTimePositiveInfinity},
        // Only the lowest terms have a timescale.
        {CMTimeMake(3, 1500000000), 1, 2, CMTimeMake(1, 1000000000)},
        // No timescale holds these: the nearest time of all.
        {CMTimeMake(1, top), 1, 2, rounded(0, 1)},
        {CMTimeMake(3, 2000000000), 1, 2, rounded(1, 1333333333)},
        {CMTimeMake(1, 1), 1, 0, kCMTimeInvalid},
        {kCMTimePositiveInfinity, -1, 2, kCMTimeNegativeInfinity},
        {kCMTimePositiveInfinity, 0, 2, kCMTimeIndefinite},
        {kCMTimeInvalid, 1, 2, kCMTimeInvalid},
    };
    for (const auto& row : table)
        EXPECT_SAME(CMTimeMultiplyByRatio(row.time, row.multiplier, row.divisor), row.result)
            << Fields{row.time} << " * " << row.multiplier << " / " << row.divisor;
    EXPECT_SAME(CMTimeMake(10, 1) / 4, CMTimeMake(5, 2));
    EXPECT_SAME(CMTimeMake(3, 2).middle(), CMTimeMake(3, 4));
}

TEST(CMTimeArithmetic, multipliesByReals) {
    struct {
        CMTime time;
        double factor;
        CMTime result;
    } table[] = {
        {CMTimeMake(1, 1), 0.5, CMTimeMake(1, 2)},
        {CMTimeMake(10, 600), 0.5, CMTimeMake(5, 600)},
        {CMTimeMake(10, 600), -3, CMTimeMake(-30, 600)},
        // A decimal factor counts as the fraction that was meant.
        {CMTimeMake(600, 600), 0.1, CMTimeMake(60, 600)},
        {CMTimeMake(1, 1000000), 1.1, CMTimeMake(11, 10000000)},
        {CMTimeMake(3, 1), 1.0 / 3, CMTimeMake(1, 1)},
        {rounded(1, 1), 2, rounded(2, 1)},
        {CMTimeMake(5, 7), 0, CMTimeMake(0, 7)},
        {CMTimeMake(0, 7), 1e300, CMTimeMake(0, 7)},
        {CMTimeMake(1, 1), 1e300, kCMTimePositiveInfinity},
        {CMTimeMake(-1, 1), 0x1p64, kCMTimeNegativeInfinity},
        {CMTimeMake(1, 4), 0x1p64, rounded(std::int64_t{1} << 62, 1)},
        {CMTimeMake(1, 1), 1e-300, rounded(0, 1)},
        {CMTimeMake(1, 1), 5e-324, rounded(0, 1)},
        {CMTimeMake(std::int64_t{1} << 62, 1), 0x1p-80, rounded(1, 262144)},
        {CMTimeMake(1, 1), INFINITY, kCMTimePositiveInfinity},
        {CMTimeMake(0, 1), INFINITY, kCMTimeIndefinite},
        {kCMTimePositiveInfinity, -0.5, kCMTimeNegativeInfinity},
        {kCMTimePositiveInfinity, 0, kCMTimeIndefinite},
        {CMTimeMake(1, 1), NAN, kCMTimeInvalid},
    };
    for (const auto& row : table) {
        EXPECT_SAME(row.time * row.factor, row.result) << Fields{row.time} << " * " << row.factor;
        EXPECT_SAME(row.factor * row.time, row.result) << Fields{row.time} << " * " << row.factor;
    }
    EXPECT_EQ((inEpoch(4) * 0.5).epoch, 4);
    EXPECT_NEAR((CMTimeMake(7, 600) * M_PI).seconds(), 7 * M_PI / 600, 1e-15);
}

TEST(CMTimeArithmetic, takesTheSignAway) {
    EXPECT_SAME(CMTimeAbsoluteValue(rounded(-3, 2)), rounded(3, 2));
    EXPECT_SAME(CMTimeAbsoluteValue(CMTimeMake(smallest, 2)), CMTimeMake(std::int64_t{1} << 62, 1));
    EXPECT_SAME(CMTimeAbsoluteValue(kCMTimeNegativeInfinity), kCMTimePositiveInfinity);
    EXPECT_SAME(CMTimeAbsoluteValue(kCMTimeIndefinite), kCMTimeIndefinite);
    EXPECT_SAME(CMTimeAbsoluteValue(kCMTimeInvalid), kCMTimeInvalid);
}

TEST(CMTimeArithmetic, dividesTimes) {
    EXPECT_EQ(CMTimeMake(3, 2) / CMTimeMake(1, 4), 6.0);
    EXPECT_TRUE(std::isnan(kCMTimeInvalid / CMTimeMake(1, 4)));
    EXPECT_EQ(CMTimeMake(3, 2) / kCMTimeZero, INFINITY);
}

TEST(CMTimeArithmetic, assigns) {
    CMTime time = CMTimeMake(1, 2);
    time += CMTimeMake(1, 3);
    time -= CMTimeMake(1, 6);
    EXPECT_SAME(time, CMTimeMake(4, 6));
    time *= 3;
    time /= 2;
    time *= 0.5;
    EXPECT_EQ(time, CMTimeMake(1, 2));
}
