#include "Times.h"
#include <tests/Testing.h>

#include <zorvan/text/CMTimeRange.h>

namespace {

/// Times of every size, at timescales that are common and at any other.
struct AnyTime : std::mt19937_64 {
    using std::mt19937_64::mt19937_64;

    std::int64_t number(int bits) { return static_cast<std::int64_t>((*this)()) >> (64 - bits); }
    std::int32_t below(std::int32_t limit) {
        return static_cast<std::int32_t>((*this)() % static_cast<std::uint64_t>(limit));
    }
    CMTime numeric(int valueBits) {
        constexpr std::int32_t common[] = {1,     24,    25,    30,    600,    1000,
                                           30000, 44100, 48000, 90000, 1000000};
        const std::int32_t timescale =
            below(4) ? common[below(std::size(common))] : below(kCMTimeMaxTimescale) + 1;
        return t(number(valueBits), timescale);
    }
};

} // namespace

TEST(CMTimeProperty, SumsAreUndoneOrOffByHalfAUnit) {
    AnyTime random(2);
    int exact = 0;
    for (int i = 0; i < 200000; ++i) {
        const CMTime a = random.numeric(random.below(64) + 1), b = random.numeric(50);
        const CMTime sum = a + b, back = sum - b;
        ASSERT_EQ(sum, b + a);
        if (!sum.isNumeric())
            continue;
        const long double left = static_cast<long double>(a.value) * sum.timescale / a.timescale;
        const long double right = static_cast<long double>(b.value) * sum.timescale / b.timescale;
        const long double slack = (std::abs(left) + std::abs(right)) * 4e-19L + 0.5001L;
        ASSERT_LE(std::abs(left + right - static_cast<long double>(sum.value)), slack);
        if (!sum.hasBeenRounded() && !back.hasBeenRounded()) {
            ASSERT_EQ(back, a);
            ++exact;
        }
    }
    EXPECT_GT(exact, 100000);
}

TEST(CMTimeProperty, ProductsAreExactOrMarked) {
    AnyTime random(4);
    int exact = 0;
    // Half the finest unit; with a real a microsecond and a millionth of the product.
    const auto isWithin = [](CMTime product, double wanted, double slack) {
        return !product.isNumeric() ||
               std::abs(product.seconds() - wanted) <= std::abs(wanted) * 1e-15 + 2.4e-10 + slack;
    };
    for (int i = 0; i < 200000; ++i) {
        const CMTime time = random.numeric(random.below(64) + 1);
        const auto multiplier = static_cast<std::int32_t>(random.number(random.below(32) + 1));
        const auto divisor = static_cast<std::int32_t>(random.number(random.below(32) + 1) | 1);
        const CMTime product = CMTimeMultiplyByRatio(time, multiplier, divisor);
        ASSERT_TRUE(isWithin(product, time.seconds() * multiplier / divisor, 0));
        if (product.isNumeric() && !product.hasBeenRounded()) {
            // value / timescale * divisor == time * multiplier, each side below 2^126.
            const auto left = detail::Int128{product.value} * divisor;
            ASSERT_EQ(left / product.timescale * time.timescale +
                          left % product.timescale * time.timescale / product.timescale,
                      detail::Int128{time.value} * multiplier);
            ++exact;
        }
        const double factor =
            std::ldexp(static_cast<double>(random.number(53)), random.below(160) - 140);
        const double wanted = time.seconds() * factor;
        ASSERT_TRUE(isWithin(time * factor, wanted, std::min(1e-6, std::abs(wanted) * 1e-6)));
    }
    EXPECT_GT(exact, 50000);
}

TEST(CMTimeProperty, SplitYieldsTheMiddles) {
    AnyTime random(6);
    for (int i = 0; i < 2000; ++i) {
        const CMTime time = t(random.number(40), 600);
        const std::int32_t count = random.below(50) + 1;
        std::int32_t index = 0;
        for (const CMTime& middle : time.split(count))
            ASSERT_EQ(middle * (2 * count), time * (2 * index++ + 1));
        ASSERT_EQ(index, count);
    }
}

TEST(CMTimeProperty, RangesBehaveLikeSetsOfTimes) {
    AnyTime random(7);
    const auto some = [&] { return t(random.below(40), 1 + random.below(3)); };
    for (int i = 0; i < 100000; ++i) {
        const CMTimeRange a = CMTimeRangeMake(some(), some()), b = CMTimeRangeMake(some(), some());
        const CMTime time = some(), clamped = a.clamp(time);
        ASSERT_EQ(a.intersection(b).contains(time), a.contains(time) && b.contains(time));
        ASSERT_TRUE(!(a.contains(time) || b.contains(time)) || a.union_(b).contains(time));
        ASSERT_TRUE(a.isEmpty() || a.union_(b).contains(a));
        ASSERT_TRUE(a.intersection(b).isEmpty() || a.contains(a.intersection(b)));
        ASSERT_TRUE(a.start <= clamped && clamped <= a.end());
        ASSERT_TRUE(clamped != time || clamped.timescale == time.timescale);
        ASSERT_EQ(clamped == time, a.contains(time) || time == a.end());
    }
}
