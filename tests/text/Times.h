#pragma once

#include <zorvan/text/CMTime.h>

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <utility>
#include <vector>

// What the tests of times share: short names, and what a failed comparison shows.
namespace zorvan {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr CMTime invalid = kCMTimeInvalid, unknown = kCMTimeIndefinite;
constexpr CMTime plus = kCMTimePositiveInfinity, minus = kCMTimeNegativeInfinity;

constexpr CMTime t(std::int64_t value, std::int32_t timescale = 1) {
    return CMTimeMake(value, timescale);
}
inline CMTime seconds(double s) { return CMTime({.seconds = s}); }
inline CMTime rounded(std::int64_t value, std::int32_t timescale = 1) {
    CMTime time = t(value, timescale);
    time.flags |= kCMTimeFlags_HasBeenRounded;
    return time;
}
inline CMTime inEpoch(std::int64_t epoch, std::int64_t value = 1) {
    return CMTimeMakeWithEpoch(value, 1, epoch);
}

inline void PrintTo(const CMTime& time, std::ostream* out) {
    *out << time.value << '/' << time.timescale << " flags " << time.flags << " epoch "
         << time.epoch;
}

using TimePairs = std::vector<std::pair<CMTime, CMTime>>;

/// To the last field, since equal times may differ in their timescale.
inline void expectSame(const TimePairs& pairs) {
    for (const auto& [found, wanted] : pairs)
        EXPECT_TRUE(found.value == wanted.value && found.timescale == wanted.timescale &&
                    found.flags == wanted.flags && found.epoch == wanted.epoch)
            << testing::PrintToString(found) << " is not " << testing::PrintToString(wanted);
}

} // namespace zorvan
