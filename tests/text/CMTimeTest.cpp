#include <zorvan/text/CMTime.h>
#include <zorvan/text/CMTimeIterator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

using namespace zorvan;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

CMTime seconds(double s) { return CMTime({.seconds = s}); }

std::vector<double> secondsOf(CMTimeIterator times) {
    std::vector<double> all;
    for (const CMTime& time : times)
        all.push_back(time.seconds());
    return all;
}

} // namespace

static_assert(CMTime({.seconds = 1.5}).value == 1500000);
static_assert(CMTimeMake(1, 3) + CMTimeMake(1, 6) == CMTimeMake(1, 2));
static_assert(!std::is_convertible_v<double, CMTime>);

TEST(CMTime, isMadeFromSeconds) {
    struct {
        double seconds;
        std::int32_t preferred;
        std::int64_t value;
        std::int32_t timescale;
        bool rounded;
    } table[] = {
        {1.5, 1000000, 1500000, 1000000, false},
        {0.1, 1000000, 100000, 1000000, false},
        {-0.29, 100, -29, 100, false},
        {0.5, 1, 1, 1, true}, // halves go away from zero
        {-0.5, 1, -1, 1, true},
        {0.49999999999999994, 1, 0, 1, true},
        {1.0 / 3, 1000000, 333333, 1000000, true},
        {1e13, 1000000, 10000000000000 * 500000, 500000, false}, // the timescale is halved
        {4.6e18, 3, 4600000000000000000, 1, false},
    };
    for (const auto& row : table) {
        const CMTime time = CMTimeMakeWithSeconds(row.seconds, row.preferred);
        EXPECT_EQ(time.value, row.value) << row.seconds;
        EXPECT_EQ(time.timescale, row.timescale) << row.seconds;
        EXPECT_EQ(time.hasBeenRounded(), row.rounded) << row.seconds;
    }
    EXPECT_TRUE(CMTimeMakeWithSeconds(1e19, 600).isPositiveInfinity());
    EXPECT_TRUE(CMTimeMakeWithSeconds(-1e300, 600).isNegativeInfinity());
    EXPECT_TRUE(seconds(infinity).isPositiveInfinity());
    EXPECT_FALSE(seconds(NAN).isValid());
    EXPECT_FALSE(CMTimeMakeWithSeconds(1, 0).isValid());
    EXPECT_FALSE(CMTimeMake(1, -600).isValid());
}

TEST(CMTime, tellsItsKind) {
    struct {
        CMTime time;
        bool valid, numeric, indefinite, positive, negative;
        double safe;
    } table[] = {
        {kCMTimeInvalid, false, false, false, false, false, 0},
        {kCMTimeZero, true, true, false, false, false, 0},
        {CMTimeMake(-3, 2), true, true, false, false, false, -1.5},
        {kCMTimeIndefinite, true, false, true, false, false, 0},
        {kCMTimePositiveInfinity, true, false, false, true, false, infinity},
        {kCMTimeNegativeInfinity, true, false, false, false, true, -infinity},
    };
    for (const auto& row : table) {
        EXPECT_EQ(row.time.isValid(), row.valid);
        EXPECT_EQ(row.time.isNumeric(), row.numeric);
        EXPECT_EQ(row.time.isIndefinite(), row.indefinite);
        EXPECT_EQ(row.time.isPositiveInfinity(), row.positive);
        EXPECT_EQ(row.time.isNegativeInfinity(), row.negative);
        EXPECT_EQ(row.time.safeSeconds(), row.safe);
    }
    EXPECT_TRUE(std::isnan(kCMTimeInvalid.seconds()));
    EXPECT_TRUE(std::isnan(kCMTimeIndefinite.seconds()));

    CMTime byHand = CMTimeMake(1, 1);
    byHand.timescale = 0; // a valid flag alone does not make a number
    EXPECT_FALSE(byHand.isValid());
    EXPECT_FALSE((byHand + kCMTimeZero).isValid());
}

TEST(CMTime, readsLikeAClock) {
    struct {
        CMTime time;
        ClockTimeWithMilliseconds clock;
        std::string desc, msDesc;
    } table[] = {
        {seconds(3723.25), {1, 2, 3, 250}, "01:02:03", "01:02:03:250"},
        {seconds(90000), {25, 0, 0, 0}, "25:00:00", "25:00:00:000"},
        {seconds(-3661), {-1, -1, -1, 0}, "-1:-1:-1", "-1:-1:-1:000"},
        {seconds(-1.25), {0, 0, -2, 750}, "00:00:-2", "00:00:-2:750"},
        {seconds(0.0625), {0, 0, 0, 62.5}, "00:00:00", "00:00:00:062"},
        {seconds(1e6), {277, 46, 40, 0}, "277:46:40", "277:46:40:000"},
        {kCMTimeInvalid, {0, 0, 0, 0}, "00:00:00", "00:00:00:000"},
        {kCMTimeIndefinite, {0, 0, 0, 0}, "00:00:00", "00:00:00:000"},
        // Neither has a place on a clock.
        {kCMTimePositiveInfinity, {0, 0, 0, 0}, "00:00:00", "00:00:00:000"},
        {CMTimeMake(largest, 1), {0, 0, 0, 0}, "00:00:00", "00:00:00:000"},
    };
    const auto hyphened = [](std::string text) {
        std::replace(text.begin(), text.end(), ':', '-');
        return text;
    };
    for (const auto& row : table) {
        EXPECT_EQ(row.time.hhmmssms(), row.clock) << row.msDesc;
        EXPECT_EQ(row.time.hhmmss(), (ClockTime{row.clock.hh, row.clock.mm, row.clock.ss}));
        EXPECT_EQ(row.time.hhmmssDesc(), row.desc);
        EXPECT_EQ(row.time.hhmmssmsDesc(), row.msDesc);
        EXPECT_EQ(row.time.hhmmssName(), hyphened(row.desc));
        EXPECT_EQ(row.time.hhmmssmsName(), hyphened(row.msDesc));
    }
    EXPECT_EQ(seconds(59.9996).hhmmssmsDesc(), "00:00:59:1000");
    EXPECT_LT(seconds(59.999999).hhmmssms().ms, 1000);
}

TEST(CMTime, isNearlyEqualBelowTheTolerance) {
    const CMTime time = CMTimeMake(10, 1);
    EXPECT_TRUE(time.isNearlyEqualTo(time + CMTimeMake(1, 1200)));
    EXPECT_TRUE(time.isNearlyEqualTo(time - CMTimeMake(1, 1200)));
    EXPECT_FALSE(time.isNearlyEqualTo(time + CMTimeMake(1, 600)));
    EXPECT_TRUE(time.isNearlyEqualTo(CMTimeMake(11, 1), CMTimeMake(3, 2)));
    EXPECT_TRUE(time.isNearlyEqualTo(CMTimeMake(9, 1), 1.1));
    EXPECT_FALSE(time.isNearlyEqualTo(CMTimeMake(9, 1), 1.0));
    EXPECT_FALSE(kCMTimePositiveInfinity.isNearlyEqualTo(kCMTimePositiveInfinity));
    EXPECT_FALSE(kCMTimeInvalid.isNearlyEqualTo(time));
}

TEST(CMTime, comparesWithSeconds) {
    const CMTime time = CMTimeMake(3, 2);
    EXPECT_TRUE(time == 1.5 && 1.5 == time && time != 1.6 && 1.6 != time);
    EXPECT_TRUE(time < 2 && time <= 1.5 && time >= 1.5 && time > 1);
    EXPECT_TRUE(2 > time && 1.5 >= time && 1.5 <= time && 1 < time);
    // The seconds are taken to the microsecond before they are compared.
    EXPECT_TRUE(CMTimeMake(1, 3) > 1.0 / 3);
    EXPECT_TRUE(time == 1.5 + 1e-7);
    EXPECT_TRUE(kCMTimePositiveInfinity == infinity);
}

TEST(CMTime, isSplitIntoMiddles) {
    EXPECT_EQ(secondsOf(CMTimeMake(10, 1).split(4)), (std::vector{1.25, 3.75, 6.25, 8.75}));
    EXPECT_EQ(secondsOf(CMTimeMake(-2, 1).split(2)), (std::vector{-0.5, -1.5}));
    EXPECT_TRUE(secondsOf(CMTimeMake(10, 1).split(0)).empty());
    EXPECT_TRUE(secondsOf(CMTimeMake(10, 1).split(-3)).empty());

    CMTimeIterator times = CMTimeMake(10, 1).split(1);
    EXPECT_EQ(times.next(), CMTimeMake(5, 1));
    EXPECT_FALSE(times.next());
    EXPECT_FALSE(times.next());

    for (const std::int64_t count : {std::int64_t{1} << 31, std::int64_t{5000000000}, largest}) {
        const std::optional<CMTime> first = CMTimeMake(10, 1).split(count).next();
        ASSERT_TRUE(first);
        EXPECT_NEAR(first->seconds(), 5.0 / static_cast<double>(count), 1e-9) << count;
    }
    EXPECT_FALSE(kCMTimeInvalid.split(3).next()->isValid());
}
