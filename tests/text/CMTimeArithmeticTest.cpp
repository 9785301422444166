#include "Times.h"
#include <tests/Testing.h>

#include <zorvan/text/CMTimeArithmetic.h>

namespace {

constexpr std::int32_t top = kCMTimeMaxTimescale;

struct Sum {
    CMTime a, b, sum, difference;
};

} // namespace

TEST(CMTimeArithmetic, AddsInTheLeastCommonTimescale) {
    // An operand that was rounded marks the result; so does a least common multiple that is no
    // timescale. It is halved while the value overflows; halves are rounded away from zero.
    const Sum table[] = {
        {t(1, 4), t(1, 6), t(5, 12), t(1, 12)},
        {rounded(1, 2), t(1, 2), rounded(2, 2), rounded(0, 2)},
        {t(1, top), t(1, 2), rounded(1073741825, top), rounded(-1073741823, top)},
        {t(largest, 2), t(2, 2), rounded(4611686018427387905), t(largest - 2, 2)},
        {t(smallest, 4), t(-1, 4), rounded(smallest / 2 - 1, 2), t(smallest + 1, 4)},
        {t(largest), t(1), plus, t(largest - 1)},
        {t(smallest), t(-1), minus, t(smallest + 1)},
    };
    for (const auto& [a, b, sum, difference] : table)
        expectSame({{a + b, sum}, {b + a, sum}, {a - b, difference}});
}

TEST(CMTimeArithmetic, AddsMarksAndEpochs) {
    const CMTime one = t(1);
    const Sum table[] = {
        {invalid, plus, invalid, invalid}, {one, invalid, invalid, invalid},
        {plus, one, plus, plus},           {one, plus, plus, minus},
        {minus, minus, minus, unknown},    {plus, minus, unknown, plus},
        {unknown, one, unknown, unknown},  {one, unknown, unknown, unknown},
        {plus, unknown, plus, plus},       {unknown, plus, plus, minus},
    };
    for (const auto& [a, b, sum, difference] : table) {
        SCOPED_TRACE(testing::PrintToString(a) + " and " + testing::PrintToString(b));
        expectSame({{a + b, sum}, {a - b, difference}});
    }
    EXPECT_EQ((inEpoch(0) + inEpoch(5)).epoch, 5);
    EXPECT_EQ((inEpoch(5) - inEpoch(0)).epoch, 5);
    EXPECT_EQ((inEpoch(5) - inEpoch(5)).epoch, 0);
    EXPECT_FALSE((inEpoch(5) + inEpoch(6)).isValid());
}

TEST(CMTimeArithmetic, OrdersEveryKind) {
    // Each one is below the next.
    const CMTime far = t(largest, top), nearlyFar = t(largest - 1, top), tiny = t(-1, top);
    const CMTime ladder[] = {minus,         t(smallest), tiny,       t(0),
                             nearlyFar,     far,         t(largest), inEpoch(1, -1),
                             inEpoch(2, 0), unknown,     plus,       invalid};
    for (std::size_t i = 0; i < std::size(ladder); ++i)
        for (std::size_t k = 0; k < std::size(ladder); ++k)
            EXPECT_EQ(CMTimeCompare(ladder[i], ladder[k]), (i > k) - (i < k)) << i << ' ' << k;
    EXPECT_EQ(t(1, 2), rounded(300, 600));
    EXPECT_EQ(t(1, 0), invalid);
    // One part in 2^62 apart: a comparison in double precision would call them equal.
    EXPECT_LT(t(top - 1, top), t(top, top - 1));
    EXPECT_LT(t(4611686011984936962, top), t(2147483646) + t(1, top));
    expectSame({{CMTimeMinimum(t(1, 2), t(2, 4)), t(1, 2)},
                {CMTimeMaximum(t(1, 2), t(2, 4)), t(1, 2)},
                {CMTimeMaximum(t(1, 2), unknown), unknown}});
}

TEST(CMTimeArithmetic, ConvertsByEveryMethod) {
    // The values by half, toward zero, away from it, never to it, up and down: the methods' order.
    struct {
        std::int64_t value;
        std::int32_t from, to;
        std::int64_t results[6];
    } table[] = {
        {3, 2, 1, {2, 1, 2, 1, 2, 1}}, {-3, 2, 1, {-2, -1, -2, -1, -1, -2}},
        {4, 3, 1, {1, 1, 2, 1, 2, 1}}, {-4, 3, 1, {-1, -1, -2, -1, -1, -2}},
        {1, 3, 4, {1, 1, 2, 2, 2, 1}}, {-1, 3, 4, {-1, -1, -2, -2, -1, -2}},
        {1, 3, 1, {0, 0, 1, 1, 1, 0}}, {-1, 3, 1, {0, 0, -1, -1, 0, -1}},
        {5, 3, 1, {2, 1, 2, 1, 2, 1}}, {6, 4, 2, {3, 3, 3, 3, 3, 3}},
    };
    for (const auto& row : table)
        for (std::uint32_t method = 1; method <= 6; ++method) {
            const CMTime time = t(row.value, row.from);
            const CMTime result =
                CMTimeConvertScale(time, row.to, static_cast<CMTimeRoundingMethod>(method));
            EXPECT_EQ(result.value, row.results[method - 1])
                << row.value << '/' << row.from << " by " << method;
            EXPECT_TRUE(result.timescale == row.to && result.hasBeenRounded() == (result != time));
        }
    constexpr auto usual = CMTimeRoundingMethod::default_;
    expectSame({{CMTimeConvertScale(t(smallest), 2, usual), minus},
                {CMTimeConvertScale(kCMTimeZero, 0, usual), invalid},
                {CMTimeConvertScale(rounded(1, 2), 4, usual), rounded(2, 4)},
                {CMTimeConvertScale(unknown, 4, usual), unknown},
                {CMTimeConvertScale(t(largest, 3), 3, usual), t(largest, 3)}});
    EXPECT_EQ(CMTimeConvertScale(inEpoch(3), 4, usual).epoch, 3);
}

TEST(CMTimeArithmetic, MultipliesByIntegers) {
    expectSame({{t(3, 600) * 200, t(600, 600)},
                {-2 * t(3, 600), t(-6, 600)},
                {t(largest, 600) * 4, t(largest, 150)},
                {t(largest, 3) * 2, rounded(6148914691236517205)},
                {t(smallest) * std::numeric_limits<std::int32_t>::min(), plus},
                {minus * -1, plus},
                {plus * 0, unknown},
                {unknown * 2, unknown},
                {invalid * 2, invalid}});
}

TEST(CMTimeArithmetic, MultipliesByRatios) {
    // A time keeps its timescale where it can. At 1500000000 only the lowest terms have one; where
    // none holds the result, it is the nearest time of all.
    const auto ratio = CMTimeMultiplyByRatio;
    expectSame({{ratio(t(600, 600), 1, 2), t(300, 600)},
                {ratio(t(1, 600), -2, 3), t(-2, 1800)},
                {ratio(t(1, 600), 2, -3), t(-2, 1800)},
                {ratio(rounded(1, 2), 1, 2), rounded(1, 4)},
                {ratio(t(smallest), 1, 1), t(smallest)},
                {ratio(t(1, top), 1, 2), rounded(0)},
                {ratio(t(3, 1500000000), 1, 2), t(1, 1000000000)},
                {ratio(t(3, 2000000000), 1, 2), rounded(1, 1333333333)},
                {ratio(t(261, 1073741824), -53, 10), rounded(-2501, 1941320250)},
                {ratio(plus, -1, 2), minus},
                {ratio(plus, 0, 2), unknown},
                {ratio(t(1), 1, 0), invalid},
                {ratio(t(smallest), -1, 1), plus},
                {t(3, 2).middle(), t(3, 4)}});
}

TEST(CMTimeArithmetic, MultipliesByReals) {
    // A decimal factor counts as the fraction that was meant.
    constexpr std::int64_t large = std::int64_t{1} << 62;
    expectSame({{t(10, 600) * -3.0, t(-30, 600)},
                {0.1 * t(600, 600), t(60, 600)},
                {t(1, 4) * 0x1p64, rounded(large)},
                {rounded(1) * 2.0, rounded(2)},
                {t(3) * (1.0 / 3), t(1)},
                {t(1) * 5e-324, rounded(0)},
                {t(5, 7) * 0.0, t(0, 7)},
                {t(1, 1000000) * 1.1, t(11, 10000000)},
                {t(large) * 0x1p-80, rounded(1, 262144)},
                {t(-1) * 0x1p64, minus},
                {t(1) * INFINITY, plus},
                {plus * 0.0, unknown},
                {t(0) * INFINITY, unknown},
                {t(1) * NAN, invalid}});
    EXPECT_EQ((inEpoch(4) * 0.5).epoch, 4);
}

// What no round timescale holds comes at one of the operand's, so that sums stay exact.
TEST(CMTimeArithmetic, MultipliesByRealsAtARelatedTimescale) {
    expectSame({{t(600, 600) * M_PI, rounded(965097, 307200)},
                {t(-900, 90000) * M_PI, rounded(-723823, 23040000)}, // to a millionth
                {rounded(90000, 90000) * 0.1234567, rounded(355555, 2880000)},
                {t(24 * 3600, 24) * (1 / 1.7), t(864000, 408)}});
    for (const double factor : {0.123456789, std::sqrt(2), 1 / M_PI, 0.00123456, 7 / 9.1})
        for (const std::int32_t timescale : {24, 600, 24000, 48000, 1000000}) {
            const CMTime product = t(timescale * 7LL, timescale) * factor,
                         start = t(1001, timescale);
            EXPECT_EQ((start + product) - start, product) << factor << " at " << timescale;
            EXPECT_NEAR(product.seconds(), 7 * factor, std::min(1e-6, 7e-6 * factor));
        }
    // Where none holds it, it is the nearest time.
    EXPECT_NEAR((t(1, 1000000) * 0.123456789).seconds(), 1.23456789e-7, 1.2e-16);
}

TEST(CMTimeArithmetic, TakesSignsAwayDividesAndAssigns) {
    expectSame({{CMTimeAbsoluteValue(rounded(-3, 2)), rounded(3, 2)},
                {CMTimeAbsoluteValue(t(smallest, 2)), t(std::int64_t{1} << 62)},
                {CMTimeAbsoluteValue(minus), plus},
                {CMTimeAbsoluteValue(unknown), unknown}});
    EXPECT_EQ(t(3, 2) / t(1, 4), 6.0);
    EXPECT_EQ(t(3, 2) / kCMTimeZero, INFINITY);
    CMTime time = t(1, 2);
    time += t(1, 3);
    time -= t(1, 6);
    expectSame({{time, t(4, 6)}});
    time *= 3;
    time /= 2;
    time *= 0.5;
    EXPECT_EQ(time, t(1, 2));
}
