#include "Times.h"
#include <tests/Testing.h>

#include <zorvan/text/CMTimeRange.h>

namespace {

CMTimeRange range(std::int64_t start, std::int64_t end) {
    return CMTimeRangeFromTimeToTime(t(start), t(end));
}
const CMTimeRange endless({.start = t(5), .duration = plus});

} // namespace

TEST(CMTimeRange, IsMadeAndChanged) {
    EXPECT_EQ(CMTimeRange({.duration = t(4)}), range(0, 4));
    EXPECT_EQ(range(5, 9).with({.start = t(1)}), range(1, 5));
    EXPECT_EQ(range(5, 9).with({.end = t(7)}), range(5, 7));
    const CMTimeRange backward = range(5, 9).with({.end = t(3)});
    EXPECT_EQ(backward.duration, -2);
    EXPECT_FALSE(backward.isValid() || CMTimeRange().isValid() || backward.isEmpty());
    EXPECT_EQ(CMTimeRangeMake(t(2), t(4)).split(2).next(), t(3));
}

TEST(CMTimeRange, HoldsTimesUpToItsEnd) {
    struct {
        CMTimeRange range;
        CMTime time;
        bool contained;
        CMTime clamped;
    } table[] = {
        {range(5, 9), t(5), true, t(5)},        {range(5, 9), t(9), false, t(9)},
        {range(5, 9), plus, false, t(9)},       {range(5, 9), minus, false, t(5)},
        {range(5, 9), unknown, false, unknown}, {range(5, 9), inEpoch(1, 6), false, invalid},
        {range(5, 9), invalid, false, invalid}, {range(9, 5), t(7), false, invalid},
        {endless, t(1000), true, t(1000)},      {endless, plus, false, plus},
    };
    for (const auto& row : table) {
        EXPECT_EQ(row.range.contains(row.time), row.contained) << row.time.hhmmssDesc();
        EXPECT_EQ(row.range.clamp(row.time), row.clamped);
    }
}

TEST(CMTimeRange, MeetsOtherRanges) {
    struct {
        CMTimeRange a, b;
        bool contains;
        CMTimeRange intersection, all;
    } table[] = {
        {range(5, 9), range(5, 9), true, range(5, 9), range(5, 9)},
        {range(5, 9), range(9, 12), false, kCMTimeRangeZero, range(5, 12)},
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
    const CMTimeRange elsewhere({.start = inEpoch(1, 6), .duration = t(1)});
    EXPECT_EQ(range(5, 9).union_(elsewhere), kCMTimeRangeInvalid);
    EXPECT_EQ(range(5, 9).intersection(elsewhere), kCMTimeRangeZero);
    EXPECT_EQ(range(2, 2).union_(range(3, 3)), range(2, 2));
}
