#include "Times.h"
#include <tests/Testing.h>

#include <zorvan/text/CMTimeIterator.h>

static_assert(CMTime({.seconds = 1.5}).value == 1500000);
static_assert(t(1, 3) + t(1, 6) == t(1, 2));
static_assert(!std::is_convertible_v<double, CMTime>);

TEST(CMTime, IsMadeFromSeconds) {
    // Halves go away from zero; the timescale is halved until the value fits.
    const auto make = CMTimeMakeWithSeconds;
    const TimePairs table = {
        {make(0.1, 1000), t(100, 1000)}, {make(-0.29, 100), t(-29, 100)},
        {make(0.5, 1), rounded(1)},      {make(1.0 / 3, 100), rounded(33, 100)},
        {make(-0.5, 1), rounded(-1)},    {make(-1e300, 600), minus},
        {make(1e19, 600), plus},         {seconds(infinity), plus},
        {seconds(NAN), invalid},         {make(1, 0), invalid},
    };
    expectSame(table);
    expectSame({{make(1e13, 1000000), t(5000000000000000000, 500000)},
                {make(0.49999999999999994, 1), rounded(0)}});
}

TEST(CMTime, TellsItsKind) {
    struct {
        CMTime time;
        std::array<bool, 5> kinds; // valid, numeric, indefinite, positively, negatively infinite
        double safe;
    } table[] = {
        {invalid, {}, 0},
        {unknown, {true, false, true}, 0},
        {plus, {true, false, false, true}, infinity},
        {minus, {true, false, false, false, true}, -infinity},
        {t(-3, 2), {true, true}, -1.5},
    };
    for (const auto& [time, kinds, safe] : table) {
        EXPECT_EQ((std::array{time.isValid(), time.isNumeric(), time.isIndefinite(),
                              time.isPositiveInfinity(), time.isNegativeInfinity()}),
                  kinds);
        EXPECT_EQ(time.safeSeconds(), safe);
        EXPECT_EQ(std::isnan(time.seconds()), !time.isValid() || time.isIndefinite());
    }
    CMTime byHand = t(1);
    byHand.timescale = 0; // a valid flag alone does not make a number
    EXPECT_FALSE(byHand.isValid());
    EXPECT_FALSE((byHand + kCMTimeZero).isValid());
}

TEST(CMTime, ReadsLikeAClock) {
    struct {
        CMTime time;
        ClockTimeWithMilliseconds clock;
        std::string text;
    } table[] = {
        {seconds(3723.25), {1, 2, 3, 250}, "01:02:03:250"},
        {seconds(-3661), {-1, -1, -1, 0}, "-1:-1:-1:000"},
        {seconds(-1.25), {0, 0, -2, 750}, "00:00:-2:750"},
        {seconds(0.0625), {0, 0, 0, 62.5}, "00:00:00:062"},
        {seconds(1e6), {277, 46, 40, 0}, "277:46:40:000"},
        {invalid, {0, 0, 0, 0}, "00:00:00:000"}, // as all that has no place on a clock
        {t(largest), {0, 0, 0, 0}, "00:00:00:000"},
    };
    for (const auto& [time, clock, text] : table) {
        EXPECT_EQ(time.hhmmssms(), clock) << text;
        EXPECT_EQ(time.hhmmssmsDesc(), text);
    }
    const CMTime time = seconds(-3723.25);
    EXPECT_EQ(time.hhmmss(), (ClockTime{-1, -2, -4}));
    EXPECT_EQ(time.hhmmssDesc(), "-1:-2:-4");
    EXPECT_EQ(time.hhmmssName(), "-1--2--4");
    EXPECT_EQ(time.hhmmssmsName(), "-1--2--4-750");
    EXPECT_EQ(seconds(59.9996).hhmmssmsDesc(), "00:00:59:1000");
    EXPECT_LT(seconds(59.999999).hhmmssms().ms, 1000);
}

TEST(CMTime, Compares) {
    EXPECT_TRUE(t(10).isNearlyEqualTo(t(10) + t(1, 1200)));
    EXPECT_FALSE(t(10).isNearlyEqualTo(t(10) - t(1, 600)));
    EXPECT_TRUE(t(10).isNearlyEqualTo(t(11), t(3, 2)));
    EXPECT_FALSE(t(10).isNearlyEqualTo(t(9), 1.0));
    EXPECT_FALSE(plus.isNearlyEqualTo(plus));
    EXPECT_FALSE(invalid.isNearlyEqualTo(t(10)));
    const CMTime time = t(3, 2);
    EXPECT_TRUE(time == 1.5 && 1.5 == time && time != 1.6 && 1 < time && time <= 1.5 && 2 > time);
    // Seconds are taken to the microsecond before they are compared.
    EXPECT_TRUE(t(1, 3) > 1.0 / 3 && time == 1.5 + 1e-7 && plus == infinity);
}

TEST(CMTime, IsSplitIntoMiddles) {
    EXPECT_FALSE(t(10).split(0).next());
    EXPECT_FALSE(t(10).split(-3).next());
    for (const std::int64_t count : {std::int64_t{1} << 31, std::int64_t{5000000000}, largest}) {
        const std::optional<CMTime> first = t(10).split(count).next();
        ASSERT_TRUE(first);
        EXPECT_NEAR(first->seconds(), 5.0 / static_cast<double>(count), 1e-9) << count;
    }
    EXPECT_FALSE(invalid.split(3).next()->isValid());
}
