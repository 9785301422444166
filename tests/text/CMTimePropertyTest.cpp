#include <zorvan/text/CMTimeRange.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace zorvan;

namespace {

/// Times of every size, at timescales that are common and at any other.
class AnyTime {
public:
    explicit AnyTime(unsigned seed) : random_(seed) {}

    std::int64_t number(int bits) { return static_cast<std::int64_t>(random_()) >> (64 - bits); }

    CMTime numeric(int valueBits) {
        constexpr std::int32_t common[] = {1,     24,    25,    30,    600,    1000,
                                           30000, 44100, 48000, 90000, 1000000};
        const bool isCommon = random_() % 4 != 0;
        const std::int32_t timescale =
            isCommon ? common[random_() % std::size(common)]
                     : static_cast<std::int32_t>(random_() % kCMTimeMaxTimescale) + 1;
        return CMTimeMake(number(valueBits), timescale);
    }

    int bits(int most) { return static_cast<int>(random_() % static_cast<unsigned>(most)) + 1; }

    CMTime any() {
        switch (random_() % 12) {
        case 0:
            return kCMTimeInvalid;
        case 1:
            return kCMTimeIndefinite;
        case 2:
            return kCMTimePositiveInfinity;
        case 3:
            return kCMTimeNegativeInfinity;
        case 4:
            return CMTimeMakeWithEpoch(number(20), 600, number(3));
        default:
            return numeric(bits(64));
        }
    }

    std::uint64_t operator()() { return random_(); }

private:
    std::mt19937_64 random_;
};

} // namespace

TEST(CMTimeProperty, orderIsTotal) {
    AnyTime random(1);
    for (int i = 0; i < 200000; ++i) {
        const CMTime a = random.any(), b = random.any(), c = random.any();
        ASSERT_EQ(CMTimeCompare(a, b), -CMTimeCompare(b, a));
        ASSERT_EQ(CMTimeCompare(a, a), 0);
        if (a <= b && b <= c) {
            ASSERT_LE(CMTimeCompare(a, c), 0);
        }
        if (a == b) {
            ASSERT_EQ(CMTimeCompare(a, c), CMTimeCompare(b, c));
        }
    }
}

TEST(CMTimeProperty, additionIsUndoneUnlessRounded) {
    AnyTime random(2);
    int exact = 0;
    for (int i = 0; i < 200000; ++i) {
        const CMTime a = random.numeric(random.bits(64)), b = random.numeric(random.bits(64));
        const CMTime sum = a + b;
        ASSERT_EQ(sum, b + a);
        ASSERT_EQ(sum.isNumeric(),
                  sum.isValid() && !sum.isPositiveInfinity() && !sum.isNegativeInfinity());
        const double about = a.seconds() + b.seconds();
        ASSERT_NEAR(sum.seconds(), about,
                    std::abs(a.seconds()) * 1e-9 + std::abs(b.seconds()) * 1e-9 + 1);
        const CMTime back = sum - b;
        if (sum.isNumeric() && !sum.hasBeenRounded() && !back.hasBeenRounded()) {
            ASSERT_EQ(back, a);
            ++exact;
        }
    }
    EXPECT_GT(exact, 100000);
}

TEST(CMTimeProperty, aRoundedSumIsOffByHalfAUnit) {
    AnyTime random(3);
    for (int i = 0; i < 100000; ++i) {
        const CMTime a = CMTimeMake(random.number(50), kCMTimeMaxTimescale - 2);
        const CMTime b =
            CMTimeMake(random.number(50), 1 + static_cast<std::int32_t>(random() % 1000000000));
        const CMTime sum = a + b;
        if (!sum.isNumeric())
            continue;
        const long double left = static_cast<long double>(a.value) * sum.timescale / a.timescale;
        const long double right = static_cast<long double>(b.value) * sum.timescale / b.timescale;
        const long double exact = left + right;
        const long double slack = (std::abs(left) + std::abs(right)) * 4e-19L + 0.5001L;
        ASSERT_LE(std::abs(exact - static_cast<long double>(sum.value)), slack);
    }
}

TEST(CMTimeProperty, ratiosAreExactOrMarked) {
    AnyTime random(4);
    int exact = 0;
    for (int i = 0; i < 200000; ++i) {
        const CMTime time = random.numeric(random.bits(64));
        const auto multiplier = static_cast<std::int32_t>(random.number(random.bits(32)));
        auto divisor = static_cast<std::int32_t>(random.number(random.bits(32)));
        divisor = divisor == 0 ? 1 : divisor;
        const CMTime product = CMTimeMultiplyByRatio(time, multiplier, divisor);
        if (!product.isNumeric())
            continue;
        if (!product.hasBeenRounded()) {
            // value / timescale * divisor == time * multiplier, each side below 2^126.
            const auto left = detail::Int128{product.value} * divisor;
            const auto right = detail::Int128{time.value} * multiplier;
            ASSERT_EQ(left / product.timescale * time.timescale +
                          left % product.timescale * time.timescale / product.timescale,
                      right);
            ++exact;
        }
        // The nearest time is never further away than half the finest unit.
        const double wanted = time.seconds() * multiplier / divisor;
        ASSERT_NEAR(product.seconds(), wanted, std::abs(wanted) * 1e-15 + 2.4e-10);
    }
    EXPECT_GT(exact, 50000);
}

TEST(CMTimeProperty, realFactorsActLikeReals) {
    AnyTime random(5);
    for (int i = 0; i < 100000; ++i) {
        const CMTime time = random.numeric(random.bits(50));
        const double factor = std::ldexp(static_cast<double>(random.number(53)),
                                         static_cast<int>(random() % 160) - 140);
        const CMTime product = time * factor;
        const double wanted = time.seconds() * factor;
        if (std::abs(wanted) < 0x1p62) {
            ASSERT_NEAR(product.seconds(), wanted, std::abs(wanted) * 1e-15 + 2.4e-10) << factor;
        }
    }
}

TEST(CMTimeProperty, splitYieldsTheMiddles) {
    AnyTime random(6);
    for (int i = 0; i < 2000; ++i) {
        const CMTime time = CMTimeMake(random.number(40), 600);
        const auto count = static_cast<std::int32_t>(random() % 50) + 1;
        std::int32_t index = 0;
        for (const CMTime& middle : time.split(count)) {
            ASSERT_FALSE(middle.hasBeenRounded());
            ASSERT_EQ(middle * (2 * count), time * (2 * index + 1));
            ++index;
        }
        ASSERT_EQ(index, count);
    }
}

TEST(CMTimeProperty, rangesBehaveLikeSetsOfTimes) {
    AnyTime random(7);
    const auto time = [&] {
        return CMTimeMake(static_cast<std::int64_t>(random() % 40),
                          1 + static_cast<std::int32_t>(random() % 3));
    };
    for (int i = 0; i < 100000; ++i) {
        const CMTimeRange a = CMTimeRangeMake(time(), time()), b = CMTimeRangeMake(time(), time());
        const CMTime t = time();
        ASSERT_EQ(a.intersection(b).contains(t), a.contains(t) && b.contains(t));
        if (a.contains(t) || b.contains(t)) {
            ASSERT_TRUE(a.union_(b).contains(t));
        }
        ASSERT_TRUE(a.isEmpty() || a.union_(b).contains(a));
        ASSERT_TRUE(a.intersection(b).isEmpty() || a.contains(a.intersection(b)));
        const CMTime clamped = a.clamp(t);
        ASSERT_TRUE(a.start <= clamped && clamped <= a.end());
        ASSERT_EQ(clamped == t, a.contains(t) || t == a.end());
    }
}
