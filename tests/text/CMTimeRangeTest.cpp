#include <zorvan/text/CMTimeRange.h>

#include <gtest/gtest.h>

#include <vector>

using namespace zorvan;

namespace {

CMTime at(double s) { return CMTime({.seconds = s}); }
CMTimeRange range(double start, double end) {
    return CMTimeRangeFromTimeToTime(at(start), at(end));
}
const CMTimeRange endless({.start = at(5), .duration = kCMTimePositiveInfinity});

} // namespace

TEST(CMTimeRange, isMadeAndChanged) {
    EXPECT_EQ(CMTimeRange({.duration = at(4)}), range(0, 4));
    EXPECT_EQ(range(5, 9).with({.start = at(1)}), range(1, 5));
    EXPECT_EQ(range(5, 9).with({.end = at(7)}), range(5, 7));
    EXPECT_EQ(range(5, 9).end(), 9);
    const CMTimeRange backward = range(5, 9).with({.end = at(3)});
    EXPECT_EQ(backward.duration, -2);
    EXPECT_FALSE(backward.isValid());
    EXPECT_FALSE(CMTimeRange().isValid());
    EXPECT_TRUE(range(5, 5).isEmpty());
    EXPECT_FALSE(backward.isEmpty());
}

TEST(CMTimeRange, holdsTimesUpToItsEnd) {
    struct {
        CMTimeRange range;
        CMTime time;
        bool contained;
        CMTime clamped;
    } table[] = {
        {range(5, 9), at(5), true, at(5)},
        {range(5, 9), at(8.999999), true, at(8.999999)},
        {range(5, 9), at(9), false, at(9)},
        {range(5, 9), at(4), false, at(5)},
        {range(5, 9), at(10), false, at(9)},
        {range(5, 5), at(5), false, at(5)},
        {range(5, 9), kCMTimePositiveInfinity, false, at(9)},
        {range(5, 9), kCMTimeNegativeInfinity, false, at(5)},
        {range(5, 9), kCMTimeIndefinite, false, kCMTimeIndefinite},
        {range(5, 9), kCMTimeInvalid, false, kCMTimeInvalid},
        {range(5, 9), CMTimeMakeWithEpoch(6, 1, 1), false, kCMTimeInvalid},
        {range(9, 5), at(7), false, kCMTimeInvalid},
        {endless, at(1e12), true, at(1e12)},
        {endless, kCMTimePositiveInfinity, false, kCMTimePositiveInfinity},
        {endless, kCMTimeIndefinite, false, kCMTimeIndefinite},
    };
    for (const auto& row : table) {
        EXPECT_EQ(row.range.contains(row.time), row.contained) << row.time.hhmmssDesc();
        EXPECT_EQ(row.range.clamp(row.time), row.clamped) << row.time.hhmmssDesc();
    }
}

TEST(CMTimeRange, meetsOtherRanges) {
    struct {
        CMTimeRange a, b;
        bool contains;
        CMTimeRange intersection, all;
    } table[] = {
        {range(5, 9), range(6, 7), true, range(6, 7), range(5, 9)},
        {range(5, 9), range(5, 9), true, range(5, 9), range(5, 9)},
        {range(5, 9), range(7, 12), false, range(7, 9), range(5, 12)},
        {range(5, 9), range(9, 12), false, kCMTimeRangeZero, range(5, 12)},
        {range(5, 9), range(20, 21), false, kCMTimeRangeZero, range(5, 21)},
        {range(5, 9), range(1, 1), false, kCMTimeRangeZero, range(5, 9)},
        {endless, range(6, 8), true, range(6, 8), endless},
        {range(9, 5), range(6, 8), false, kCMTimeRangeInvalid, kCMTimeRangeInvalid},
    };
    for (const auto& row : table) {
        EXPECT_EQ(row.a.contains(row.b), row.contains);
        EXPECT_EQ(row.a.intersection(row.b), row.intersection);
        EXPECT_EQ(row.b.intersection(row.a), row.intersection);
        EXPECT_EQ(row.a.union_(row.b), row.all);
        EXPECT_EQ(row.b.union_(row.a), row.all);
    }
    const CMTimeRange elsewhere({.start = CMTimeMakeWithEpoch(6, 1, 1), .duration = at(1)});
    EXPECT_EQ(range(5, 9).union_(elsewhere), kCMTimeRangeInvalid);
    EXPECT_EQ(range(5, 9).intersection(elsewhere), kCMTimeRangeZero);
    EXPECT_EQ(range(2, 2).union_(range(3, 3)), range(2, 2));
}

TEST(CMTimeRange, isSplitIntoMiddles) {
    std::vector<double> times;
    CMTimeIterator iterator = CMTimeRangeMake(at(2), at(4)).split(2);
    while (const std::optional<CMTime> time = iterator.next())
        times.push_back(time->seconds());
    EXPECT_EQ(times, (std::vector{3.0, 5.0}));
    EXPECT_FALSE(range(2, 4).split(0).next());
}
