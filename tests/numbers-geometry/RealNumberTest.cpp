#include <tests/Testing.h>

#include <zorvan/numbers-geometry/Integer.h>
#include <zorvan/numbers-geometry/RealNumber.h>

#include <bit>
#include <charconv>

namespace testing_reals {

// A real of another kind, which joins by its functions.
struct Tenths {
    double value = 0;
    explicit Tenths(double v) : value(v) {}
    Tenths() = default;
    auto operator<=>(const Tenths&) const = default;
    friend Tenths operator*(Tenths a, Tenths b) { return Tenths(a.value * b.value); }
    friend Tenths operator/(Tenths a, Tenths b) { return Tenths(a.value / b.value); }
    friend Tenths round(Tenths a) { return Tenths(std::round(a.value)); }
    friend Tenths pow(Tenths a, Tenths b) { return Tenths(std::pow(a.value, b.value)); }
};
// What it has to have besides, and no test calls.
Tenths operator+(Tenths, Tenths), operator-(Tenths, Tenths), operator-(Tenths);
Tenths abs(Tenths), floor(Tenths), ceil(Tenths), mod(Tenths, Tenths), sqrt(Tenths);
std::int64_t intValue(Tenths);
double doubleValue(Tenths);

} // namespace testing_reals

namespace {

using testing_reals::Tenths;

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

static_assert(RealNumber<double> && RealNumber<float> && RealNumber<Tenths>);
static_assert(!RealNumber<int> && !RealNumber<bool>);

} // namespace

TEST(RealNumber, Rounds) {
    EXPECT_EQ(zorvan::round(2.45, 1), 2.5);
    EXPECT_EQ(zorvan::round(1249.0, -2), 1200);
    EXPECT_EQ(truncate(-2.49, 1), -2.4);
    EXPECT_EQ(roundInt(2.46, 1), 2);
    EXPECT_EQ(roundInt(-2.5), -3);
    EXPECT_EQ(floorInt(-2.5), -3);
    EXPECT_EQ(ceilInt(2.1), 3);
    EXPECT_EQ(zorvan::round(Tenths(2.46), 1), Tenths(2.5));
}

TEST(RealNumber, ComparesByPlacesAndTolerance) {
    EXPECT_TRUE(isSimilarTo(1.005, 1.0, 2)); // 1.005 * 100 is below 100.5
    EXPECT_FALSE(isSimilarTo(14.0, 16.0, -1));
    EXPECT_FALSE(isSimilarTo(NAN, NAN, 2));
    for (std::int64_t places = -30; places <= 30; ++places)
        EXPECT_EQ(powerOfTen<double>(places), std::pow(10.0, static_cast<double>(places)));
    EXPECT_TRUE(overlap(5.0, 6, 1));
    EXPECT_TRUE(overlap(6.0, 5, 1));
    EXPECT_FALSE(overlap(5.0, std::nextafter(5.0, 6.0), 0));
    EXPECT_FALSE(overlap(5.0, 5, -1));
    EXPECT_FALSE(overlap(NAN, NAN, INFINITY));
}

TEST(RealNumber, SnapsAndClamps) {
    for (const auto& [x, glued] : {std::pair(8.0, 8), {8.5, 10}, {12.0, 12}, {11.99, 10}})
        EXPECT_EQ(glue(x, 10, 2), glued);
    EXPECT_EQ(glue(9.99, 10, 0), 9.99);
    EXPECT_EQ(zorvan::clamp(3.0, 5, 1), 5);
    EXPECT_EQ(zorvan::clamp(3.5F, 0, 1), 1);
    EXPECT_EQ(zorvan::sign(-0.0), 1);
    EXPECT_EQ(zorvan::sign(-0.5), -1);
    EXPECT_EQ(zorvan::norm(-0.5), 0.5);
    EXPECT_FALSE(isInteger(NAN));
    EXPECT_TRUE(isInteger(-3.0));
}

TEST(RealNumber, ConvertsWithoutLeavingTheRange) {
    const std::pair<double, std::int64_t> table[] = {
        {-0.9, 0},           {9.3e18, largest},     {-9.3e18, smallest},
        {INFINITY, largest}, {-INFINITY, smallest}, {NAN, 0},
    };
    for (const auto& [x, integer] : table) {
        EXPECT_EQ(intValue(x), integer) << x;
        EXPECT_EQ(intValue(static_cast<float>(x)), integer) << x;
    }
    EXPECT_EQ(toByte(0.999), 254);
    EXPECT_EQ(toByte(1e300), largest);
    EXPECT_EQ(realValue<float>(NSNumber(0.1)), 0.1F);
    EXPECT_EQ(realValue<double>(NSNumber(7)), 7.0);
    EXPECT_EQ(points2mm(2.0), 2.0 * 0.352778);
    EXPECT_EQ(weeks2seconds(1.0F), 604800.0F);
}

TEST(RealNumber, ApproximatesByFractions) {
    struct {
        double x, threshold;
        Fraction fraction;
    } table[] = {
        {0.75, 1e-6, {3, 4}},        {1.0 / 3.0, 1e-6, {1, 3}},    {0.333, 1e-6, {333, 1000}},
        {M_PI, 1e-3, {333, 106}},    {M_PI, 1e-6, {355, 113}},     {M_PI, 0, {103993, 33102}},
        {M_PI, -1, {103993, 33102}}, {M_PI, NAN, {103993, 33102}}, {-0.5, 1e-6, {-1, 2}},
        {3.0, 1e-6, {3, 1}},         {NAN, 1e-6, {0, 1}},          {-INFINITY, 1e-6, {0, 1}},
        {1e300, 1e-6, {largest, 1}}, {1.5, 0.5, {1, 1}},
    };
    for (const auto& [x, threshold, wanted] : table)
        EXPECT_EQ(fraction(x, threshold), wanted) << x << " within " << threshold;
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        const double x = std::ldexp(std::uniform_real_distribution<>(-1, 1)(random), i % 60);
        const auto [numerator, denominator] = fraction(x, 0);
        ASSERT_GT(denominator, 0);
        ASSERT_NEAR(static_cast<double>(numerator) / static_cast<double>(denominator), x, 1.0);
    }
}

TEST(RealNumber, PrintsTheShortestTextThatReadsBack) {
    const std::pair<double, const char*> table[] = {
        {0.0, "0.0"},       {-0.0, "-0.0"},        {1.5, "1.5"},        {100000, "100000.0"},
        {1e16, "1e+16"},    {-1.5e-7, "-1.5e-07"}, {0.0001, "0.0001"},  {0.00001, "1e-05"},
        {5e-324, "5e-324"}, {INFINITY, "inf"},     {-INFINITY, "-inf"}, {-NAN, "nan"},
    };
    for (const auto& [x, text] : table)
        EXPECT_EQ(description(x), text);
    EXPECT_EQ(description(1e15), "1000000000000000.0");
    std::mt19937_64 random(1);
    for (int i = 0; i < 100000; ++i) {
        const double x = std::bit_cast<double>(random());
        const std::string text = description(x);
        double back = 0;
        std::from_chars(text.data(), text.data() + text.size(), back);
        ASSERT_TRUE(back == x || (std::isnan(back) && std::isnan(x))) << text;
    }
}

TEST(RealNumber, RandomValuesCoverTheirRange) {
    for (int i = 0; i < 5000; ++i) {
        const double between = randomValue<double>(10, 20);
        ASSERT_TRUE(between >= 10 && between < 20);
        const std::int64_t integer = randomValue<std::int64_t>(-5, 5);
        ASSERT_TRUE(integer >= -5 && integer < 5);
        const std::int64_t wide = random<std::int64_t>();
        ASSERT_TRUE(wide >= 0 && wide <= 2147483646);
        ASSERT_LE(randomValue<double>(), 4294967295.0);
    }
}

TEST(Integer, KeepsToItsRange) {
    EXPECT_EQ(zorvan::sign(0), 1);
    EXPECT_EQ(zorvan::sign(-3), -1);
    EXPECT_EQ(zorvan::abs(smallest), largest);
    EXPECT_EQ(zorvan::pow(std::int64_t{2}, std::int64_t{10}), 1024);
    EXPECT_EQ(zorvan::pow(std::int64_t{2}, std::int64_t{-1}), 0);
    EXPECT_EQ(zorvan::pow(std::int64_t{10}, std::int64_t{30}), largest);
    EXPECT_EQ(factorial(20), 2432902008176640000);
    EXPECT_EQ(factorial(21), largest);
    EXPECT_EQ(factorial(smallest), 1);
    EXPECT_EQ(zorvan::clamp(7, 5, 1), 5);
    EXPECT_EQ(positiveRemainder(-7, 3), 2);
    EXPECT_EQ(positiveRemainder(-7, 0), -7);
    EXPECT_EQ(positiveRemainder(smallest, -1), 0);
    EXPECT_EQ(positiveRemainder(-1, smallest), largest);
    EXPECT_EQ(randomValue<std::int64_t>(smallest, smallest), smallest);
    // Numbers are padded to the digits of the largest.
    EXPECT_EQ(zeroPadded(-5, 100), "-05");
    EXPECT_EQ(zeroPadded(1234, 9), "1234");
    EXPECT_EQ(zeroPadded(5, 0), "5");
    EXPECT_EQ(zeroPadded(7, largest), "0000000000000000007");
    std::int64_t power = 1;
    for (std::size_t digits = 1; digits <= 15; ++digits, power *= 10) {
        EXPECT_EQ(zeroPadded(0, power).size(), digits) << power;
        EXPECT_EQ(zeroPadded(0, power * 10 - 1).size(), digits) << power * 10 - 1;
    }
}
