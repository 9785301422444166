#pragma once

#include <zorvan/text/CMTime.h>
#include <zorvan/text/CMTimeFractions.h>
#include <zorvan/text/CMTimeRoundingMethod.h>

#include <algorithm>
#include <numeric>

namespace zorvan {

namespace detail {

constexpr CMTime infinity(bool negative) noexcept {
    return negative ? kCMTimeNegativeInfinity : kCMTimePositiveInfinity;
}

constexpr CMTimeFlags roundedFlag(const CMTime& time) noexcept {
    return time.flags & kCMTimeFlags_HasBeenRounded;
}

/// The time of `units / unitsPerSecond` at the timescale, which is halved until the value fits; an
/// infinity when it does not fit at timescale 1. |units| is below 2^95, `unitsPerSecond` below
/// 2^63.
constexpr CMTime fit(Int128 units, std::int64_t unitsPerSecond, std::int32_t timescale,
                     CMTimeFlags rounded, std::int64_t epoch) noexcept {
    for (; timescale > 0; timescale /= 2) {
        const auto [value, exact] =
            divide(units * timescale, unitsPerSecond, CMTimeRoundingMethod::roundHalfAwayFromZero);
        if (!fitsInt64(value))
            continue;
        const CMTimeFlags flags = exact ? rounded : kCMTimeFlags_HasBeenRounded;
        return makeTime(static_cast<std::int64_t>(value), timescale, kCMTimeFlags_Valid | flags,
                        epoch);
    }
    return infinity(units < 0);
}

/// The sum or difference of two times that are valid but not both numeric.
constexpr CMTime addMarked(const CMTime& a, const CMTime& b, bool negateB) noexcept {
    const bool aInfinite = a.isPositiveInfinity() || a.isNegativeInfinity();
    const bool bInfinite = b.isPositiveInfinity() || b.isNegativeInfinity();
    const bool bNegative = b.isNegativeInfinity() != negateB;
    if (aInfinite && bInfinite && a.isNegativeInfinity() != bNegative)
        return kCMTimeIndefinite;
    if (aInfinite)
        return infinity(a.isNegativeInfinity());
    return bInfinite ? infinity(bNegative) : kCMTimeIndefinite;
}

constexpr CMTime addScaled(const CMTime& a, const CMTime& b, bool negateB,
                           std::int64_t epoch) noexcept {
    const std::int32_t common = std::gcd(a.timescale, b.timescale);
    const std::int64_t multiple = std::int64_t{a.timescale / common} * b.timescale;
    const Int128 left = Int128{a.value} * (b.timescale / common);
    const Int128 right = Int128{b.value} * (a.timescale / common);
    const Int128 units = negateB ? left - right : left + right;
    const CMTimeFlags rounded = roundedFlag(a) | roundedFlag(b);
    if (multiple <= kCMTimeMaxTimescale && fitsInt64(units))
        return makeTime(static_cast<std::int64_t>(units), static_cast<std::int32_t>(multiple),
                        kCMTimeFlags_Valid | rounded, epoch);
    const std::int64_t timescale = std::min<std::int64_t>(multiple, kCMTimeMaxTimescale);
    return fit(units, multiple, static_cast<std::int32_t>(timescale), rounded, epoch);
}

constexpr CMTime add(const CMTime& a, const CMTime& b, bool negateB) noexcept {
    if (!a.isNumeric() || !b.isNumeric())
        return a.isValid() && b.isValid() ? addMarked(a, b, negateB) : kCMTimeInvalid;
    std::int64_t epoch = 0;
    if (a.epoch != b.epoch) {
        if (a.epoch != 0 && b.epoch != 0)
            return kCMTimeInvalid;
        epoch = a.epoch != 0 ? a.epoch : b.epoch;
    }
    if (a.timescale == b.timescale) {
        std::int64_t value = 0;
        const bool overflow = negateB ? __builtin_sub_overflow(a.value, b.value, &value)
                                      : __builtin_add_overflow(a.value, b.value, &value);
        if (!overflow)
            return makeTime(value, a.timescale,
                            kCMTimeFlags_Valid | roundedFlag(a) | roundedFlag(b), epoch);
    }
    return addScaled(a, b, negateB, epoch);
}

/// Where a time stands among the kinds: negative infinity, numbers, indefinite, positive infinity,
/// invalid.
constexpr int orderOfKind(const CMTime& time) noexcept {
    if (time.isNumeric())
        return 1;
    if (time.isNegativeInfinity())
        return 0;
    if (time.isIndefinite())
        return 2;
    return time.isPositiveInfinity() ? 3 : 4;
}

/// `time * multiplier / divisor`; both factors are not below zero, `divisor` is not 0, and their
/// products with the value and with the timescale fit 127 bits. Exact where that is possible, at
/// the smallest multiple of the time's timescale that is; else the nearest time at any timescale.
constexpr CMTime multiplyByFraction(const CMTime& time, bool negative, UInt128 multiplier,
                                    UInt128 divisor) noexcept {
    const auto bits = static_cast<std::uint64_t>(time.value);
    const UInt128 size = UInt128{time.value < 0 ? 0 - bits : bits} * multiplier;
    negative = negative != (time.value < 0);
    const UInt128 largest = UInt128{std::numeric_limits<std::int64_t>::max()} + (negative ? 1 : 0);

    const UInt128 common = gcd(size, divisor);
    Fraction result{size / common, divisor / common * static_cast<std::uint32_t>(time.timescale)};
    CMTimeFlags rounded = roundedFlag(time);
    if (result.numerator > largest || result.denominator > UInt128{kCMTimeMaxTimescale}) {
        if (result.numerator / result.denominator > largest)
            return infinity(negative);
        const UInt128 factor = gcd(result.numerator, result.denominator);
        const Fraction lowest{result.numerator / factor, result.denominator / factor};
        result = nearestFraction(lowest, largest, kCMTimeMaxTimescale);
        if (result.numerator != lowest.numerator || result.denominator != lowest.denominator)
            rounded = kCMTimeFlags_HasBeenRounded;
    }
    const auto units = static_cast<std::uint64_t>(result.numerator);
    return makeTime(static_cast<std::int64_t>(negative ? 0 - units : units),
                    static_cast<std::int32_t>(result.denominator), kCMTimeFlags_Valid | rounded,
                    time.epoch);
}

/// An infinite, indefinite or invalid time times a factor of the given sign.
constexpr CMTime multiplyMarked(const CMTime& time, int sign) noexcept {
    if (!time.isValid())
        return kCMTimeInvalid;
    if (time.isIndefinite() || sign == 0)
        return kCMTimeIndefinite;
    return infinity(time.isNegativeInfinity() != (sign < 0));
}

} // namespace detail

/// The sum. Two timescales meet in their least common multiple, or in `kCMTimeMaxTimescale` when
/// that is above it; a value that overflows halves the timescale until it fits, and the sum is
/// infinite when it does not fit even at timescale 1. Halves are rounded away from zero.
///
/// Marked as rounded when it is, or when an operand was. An invalid operand gives the invalid time;
/// one infinity is the sum, and two that contradict each other, like an indefinite operand, give
/// the indefinite time. Two different epochs other than 0 give the invalid time, two equal ones
/// epoch 0; else the sum has the epoch that is not 0.
constexpr CMTime CMTimeAdd(const CMTime& a, const CMTime& b) noexcept {
    return detail::add(a, b, false);
}

/// The difference, by the rules of `CMTimeAdd`.
constexpr CMTime CMTimeSubtract(const CMTime& a, const CMTime& b) noexcept {
    return detail::add(a, b, true);
}

/// The order of times: negative infinity, the numeric times, indefinite, positive infinity,
/// invalid. Numeric times go by epoch first, then by their exact value. -1, 0 or 1.
constexpr std::int32_t CMTimeCompare(const CMTime& a, const CMTime& b) noexcept {
    if (!a.isNumeric() || !b.isNumeric()) {
        const int left = detail::orderOfKind(a);
        const int right = detail::orderOfKind(b);
        return (left > right) - (left < right);
    }
    if (a.epoch != b.epoch)
        return a.epoch < b.epoch ? -1 : 1;
    if (a.timescale == b.timescale)
        return (a.value > b.value) - (a.value < b.value);
    const detail::Int128 left = detail::Int128{a.value} * b.timescale;
    const detail::Int128 right = detail::Int128{b.value} * a.timescale;
    return (left > right) - (left < right);
}

/// By `CMTimeCompare`. Weak, because equal times may differ in timescale and in the mark of
/// rounding.
/// @{
constexpr std::weak_ordering operator<=>(const CMTime& a, const CMTime& b) noexcept {
    return CMTimeCompare(a, b) <=> 0;
}
constexpr bool operator==(const CMTime& a, const CMTime& b) noexcept {
    return CMTimeCompare(a, b) == 0;
}
/// @}

/// Against a number of seconds, taken to the nearest microsecond first.
/// @{
constexpr std::weak_ordering operator<=>(const CMTime& time, double seconds) noexcept {
    return time <=> CMTime({.seconds = seconds});
}
constexpr bool operator==(const CMTime& time, double seconds) noexcept {
    return time == CMTime({.seconds = seconds});
}
/// @}

/// The smaller or the larger one by `CMTimeCompare`; the first of two equal ones.
/// @{
constexpr CMTime CMTimeMinimum(const CMTime& a, const CMTime& b) noexcept { return b < a ? b : a; }
constexpr CMTime CMTimeMaximum(const CMTime& a, const CMTime& b) noexcept { return a < b ? b : a; }
/// @}

/// The time without its sign; invalid and indefinite times come back as they are.
constexpr CMTime CMTimeAbsoluteValue(const CMTime& time) noexcept {
    if (time.isNegativeInfinity())
        return kCMTimePositiveInfinity;
    if (!time.isNumeric() || time.value >= 0)
        return time;
    return detail::fit(-detail::Int128{time.value}, time.timescale, time.timescale,
                       detail::roundedFlag(time), time.epoch);
}

/// The same time at another timescale. Marked as rounded when its value had to be, or was before.
/// Infinite when the value does not fit at the new timescale. A time that is not numeric comes back
/// as it is; a timescale of zero or below gives the invalid time.
constexpr CMTime CMTimeConvertScale(const CMTime& time, std::int32_t newTimescale,
                                    CMTimeRoundingMethod method) noexcept {
    if (newTimescale <= 0)
        return kCMTimeInvalid;
    if (!time.isNumeric())
        return time;
    const bool towardMinimum = method == CMTimeRoundingMethod::neverToZero;
    if (towardMinimum)
        method = newTimescale < time.timescale ? CMTimeRoundingMethod::roundTowardZero
                                               : CMTimeRoundingMethod::roundAwayFromZero;
    auto [value, exact] =
        detail::divide(detail::Int128{time.value} * newTimescale, time.timescale, method);
    if (towardMinimum && value == 0 && time.value != 0)
        value = time.value < 0 ? -1 : 1;
    if (!detail::fitsInt64(value))
        return detail::infinity(value < 0);
    const CMTimeFlags rounded = exact ? detail::roundedFlag(time) : kCMTimeFlags_HasBeenRounded;
    return detail::makeTime(static_cast<std::int64_t>(value), newTimescale,
                            kCMTimeFlags_Valid | rounded, time.epoch);
}

/// The product at the time's own timescale, which is halved while the value overflows; infinite
/// when it overflows even at timescale 1. An infinite time keeps or changes its sign, and becomes
/// indefinite when the factor is 0.
constexpr CMTime CMTimeMultiply(const CMTime& time, std::int32_t multiplier) noexcept {
    if (!time.isNumeric())
        return detail::multiplyMarked(time, (multiplier > 0) - (multiplier < 0));
    return detail::fit(detail::Int128{time.value} * multiplier, time.timescale, time.timescale,
                       detail::roundedFlag(time), time.epoch);
}

namespace detail {

/// `CMTimeMultiplyByRatio` with a divisor of any size.
constexpr CMTime multiplyByRatio(const CMTime& time, std::int32_t multiplier,
                                 std::int64_t divisor) noexcept {
    if (divisor == 0)
        return kCMTimeInvalid;
    const bool negative = (multiplier < 0) != (divisor < 0);
    if (!time.isNumeric())
        return multiplyMarked(time, multiplier == 0 ? 0 : negative ? -1 : 1);
    const Int128 above = multiplier;
    const Int128 below = divisor;
    return multiplyByFraction(time, negative, static_cast<UInt128>(above < 0 ? -above : above),
                              static_cast<UInt128>(below < 0 ? -below : below));
}

/// A product at a timescale that comes from that of its operand: doubled until it is at least
/// 65,536 and holds the product to a microsecond and to a millionth of it. As it is when none does.
constexpr CMTime atRelatedTimescale(const CMTime& product, std::int64_t timescale) noexcept {
    constexpr std::int64_t least = 65536;
    constexpr std::int64_t precision = 1'000'000;
    constexpr auto size = [](Int128 number) { return number < 0 ? -number : number; };
    while (timescale < least)
        timescale *= 2;
    for (; product.isNumeric() && timescale <= kCMTimeMaxTimescale; timescale *= 2) {
        const CMTime near = CMTimeConvertScale(product, static_cast<std::int32_t>(timescale),
                                               CMTimeRoundingMethod::roundHalfAwayFromZero);
        if (!near.isNumeric())
            break;
        const Int128 units = Int128{product.value} * timescale;
        const Int128 error = Int128{near.value} * product.timescale - units;
        if (size(error) * precision < std::min(size(units), Int128{product.timescale} * timescale))
            return near;
    }
    return product;
}

/// `time`, which is not marked as rounded, times a real that `isExactFraction`.
constexpr CMTime multiplyByReal(const CMTime& time, bool negative, double real) noexcept {
    constexpr std::int32_t largestDecimalTimescale = 10'000'000;
    Fraction factor = exactFraction(real);
    if (factor.denominator <= UInt128{1} << 95) { // times a timescale it still fits
        const CMTime product =
            multiplyByFraction(time, negative, factor.numerator, factor.denominator);
        if (!product.hasBeenRounded())
            return product;
    }
    factor = simplestFraction(real);
    const CMTime product = multiplyByFraction(time, negative, factor.numerator, factor.denominator);
    return product.hasBeenRounded() || product.timescale > largestDecimalTimescale
               ? atRelatedTimescale(product, time.timescale)
               : product;
}

/// The time nearest to a number of seconds that is not below zero, marked as rounded.
constexpr CMTime makeFromReal(double seconds, bool negative, std::int64_t epoch) noexcept {
    if (seconds >= 0x1p63)
        return infinity(negative);
    CMTime time = makeTime(0, 1, kCMTimeFlags_Valid, epoch);
    if (isExactFraction(seconds)) {
        time.value = 1;
        time = multiplyByReal(time, negative, seconds);
    }
    time.flags |= kCMTimeFlags_HasBeenRounded;
    return time;
}

} // namespace detail

/// `time * multiplier / divisor`, exact where that is possible: at the time's own timescale, else
/// at the smallest multiple of it, else at any. When it is not, the nearest time there is at
/// whatever timescale, marked as rounded; infinite when the value does not fit even at timescale 1.
///
/// Invalid when the divisor is 0. An infinite time keeps or changes its sign, and becomes
/// indefinite when the multiplier is 0.
constexpr CMTime CMTimeMultiplyByRatio(const CMTime& time, std::int32_t multiplier,
                                       std::int32_t divisor) noexcept {
    return detail::multiplyByRatio(time, multiplier, divisor);
}

/// The product with a real. Exact where a time can hold it exactly; else the real stands for the
/// simplest fraction that is the same double (0.1 for 1/10), and the product is exact where that is
/// so at a timescale up to 10,000,000. So decimal factors keep round timescales. Any other product
/// is rounded at a timescale that sums with that of `time` stay exact at: its own, doubled until it
/// is at least 65,536 and holds the product to a microsecond and to a millionth of it. When none
/// does, it is the nearest time there is.
///
/// NaN gives the invalid time. Zero times an infinity, either way round, gives the indefinite one.
constexpr CMTime CMTimeMultiplyByFloat64(const CMTime& time, double multiplier) noexcept {
    if (multiplier != multiplier)
        return kCMTimeInvalid;
    const bool negative = multiplier < 0;
    const double size = negative ? -multiplier : multiplier;
    if (!time.isNumeric())
        return detail::multiplyMarked(time, size == 0 ? 0 : negative ? -1 : 1);

    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (size == infinity)
        return time.value == 0 ? kCMTimeIndefinite : detail::infinity(negative != (time.value < 0));
    if (size == 0 || time.value == 0)
        return detail::makeTime(0, time.timescale, kCMTimeFlags_Valid | detail::roundedFlag(time),
                                time.epoch);
    if (detail::isExactFraction(size)) {
        CMTime unmarked = time;
        unmarked.flags &= ~kCMTimeFlags_HasBeenRounded;
        CMTime product = detail::multiplyByReal(unmarked, negative, size);
        product.flags |= product.isNumeric() ? detail::roundedFlag(time) : 0;
        return product;
    }
    const double seconds = time.seconds() < 0 ? -time.seconds() : time.seconds();
    return detail::makeFromReal(seconds * size, negative != (time.value < 0), time.epoch);
}

/// `CMTimeAdd`, `CMTimeSubtract`, `CMTimeMultiply`, `CMTimeMultiplyByFloat64`, and for the division
/// `CMTimeMultiplyByRatio`, which gives the invalid time when the divisor is 0.
/// @{
constexpr CMTime operator+(const CMTime& a, const CMTime& b) noexcept { return CMTimeAdd(a, b); }
constexpr CMTime operator-(const CMTime& a, const CMTime& b) noexcept {
    return CMTimeSubtract(a, b);
}
constexpr CMTime operator*(const CMTime& time, std::int32_t factor) noexcept {
    return CMTimeMultiply(time, factor);
}
constexpr CMTime operator*(std::int32_t factor, const CMTime& time) noexcept {
    return CMTimeMultiply(time, factor);
}
constexpr CMTime operator*(const CMTime& time, double factor) noexcept {
    return CMTimeMultiplyByFloat64(time, factor);
}
constexpr CMTime operator*(double factor, const CMTime& time) noexcept {
    return CMTimeMultiplyByFloat64(time, factor);
}
constexpr CMTime operator/(const CMTime& time, std::int32_t divisor) noexcept {
    return CMTimeMultiplyByRatio(time, 1, divisor);
}
/// @}
/// Deleted, so that a real divisor is not cut to an integer; multiply by its inverse instead.
CMTime operator/(const CMTime&, double) = delete;

/// How often `b` goes into `a`: the quotient of `value / timescale` of both in double precision,
/// whatever their flags say.
constexpr double operator/(const CMTime& a, const CMTime& b) noexcept {
    return (static_cast<double>(a.value) / a.timescale) /
           (static_cast<double>(b.value) / b.timescale);
}

constexpr CMTime& CMTime::operator+=(const CMTime& other) noexcept { return *this = *this + other; }
constexpr CMTime& CMTime::operator-=(const CMTime& other) noexcept { return *this = *this - other; }
constexpr CMTime& CMTime::operator*=(std::int32_t factor) noexcept {
    return *this = *this * factor;
}
constexpr CMTime& CMTime::operator*=(double factor) noexcept { return *this = *this * factor; }
constexpr CMTime& CMTime::operator/=(std::int32_t divisor) noexcept {
    return *this = *this / divisor;
}

constexpr CMTime CMTime::middle() const noexcept { return CMTimeMultiplyByRatio(*this, 1, 2); }

constexpr bool CMTime::isNearlyEqualTo(const CMTime& other,
                                       const std::optional<CMTime>& tolerance) const noexcept {
    return CMTimeAbsoluteValue(*this - other) < tolerance.value_or(CMTimeMake(1, 600));
}

constexpr bool CMTime::isNearlyEqualTo(const CMTime& other, double tolerance) const noexcept {
    return CMTimeAbsoluteValue(*this - other) < CMTime({.seconds = tolerance});
}

} // namespace zorvan
