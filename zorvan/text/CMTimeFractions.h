#pragma once

#include <zorvan/text/CMTimeRoundingMethod.h>

#include <bit>
#include <cstdint>

// The integers of 128 bits and the fractions that times are computed with. Times are constant
// expressions, so that this is a header; applications have no use for it.
namespace zorvan::detail {

__extension__ using Int128 = __int128;
__extension__ using UInt128 = unsigned __int128;

constexpr bool fitsInt64(Int128 number) noexcept {
    return number == static_cast<std::int64_t>(number);
}

/// The quotient rounded by the method; `exact` says whether there was nothing to round. `divisor`
/// is above zero. `neverToZero` has to be settled by the caller.
struct Quotient {
    Int128 value;
    bool exact;
};
constexpr Quotient divide(Int128 dividend, Int128 divisor, CMTimeRoundingMethod method) noexcept {
    const Int128 quotient = dividend / divisor;
    const Int128 rest = dividend % divisor;
    if (rest == 0)
        return {quotient, true};
    const Int128 size = rest < 0 ? -rest : rest;
    bool away = false;
    switch (method) {
    case CMTimeRoundingMethod::roundHalfAwayFromZero:
        away = size >= divisor - size;
        break;
    case CMTimeRoundingMethod::roundAwayFromZero:
        away = true;
        break;
    case CMTimeRoundingMethod::roundTowardPositiveInfinity:
        away = rest > 0;
        break;
    case CMTimeRoundingMethod::roundTowardNegativeInfinity:
        away = rest < 0;
        break;
    case CMTimeRoundingMethod::roundTowardZero:
    case CMTimeRoundingMethod::neverToZero:
        break;
    }
    return {away ? quotient + (rest < 0 ? -1 : 1) : quotient, false};
}

constexpr UInt128 gcd(UInt128 a, UInt128 b) noexcept {
    while (b != 0) {
        const UInt128 rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

/// A fraction whose parts are not below zero.
struct Fraction {
    UInt128 numerator;
    UInt128 denominator;
};

/// The convergents of a continued fraction: each is nearer to the fraction than any with a smaller
/// denominator, and the last is the fraction in its lowest terms.
class Convergents {
public:
    constexpr explicit Convergents(Fraction fraction) noexcept : rest_(fraction) {}

    constexpr bool finished() const noexcept { return rest_.denominator == 0; }
    constexpr Fraction current() const noexcept { return current_; }
    /// How many times `current` goes into the next convergent, beside `previous` once.
    constexpr UInt128 coefficient() const noexcept { return rest_.numerator / rest_.denominator; }
    constexpr Fraction previous() const noexcept { return previous_; }
    /// Whether half the coefficient times `current` beside `previous` once is nearer to the
    /// fraction than `current` is. The products are not above the denominator of the fraction.
    constexpr bool isNearerAtHalf() const noexcept {
        return rest_.numerator % rest_.denominator * current_.denominator <
               rest_.denominator * previous_.denominator;
    }

    constexpr void advance() noexcept {
        const UInt128 times = coefficient();
        const Fraction next{times * current_.numerator + previous_.numerator,
                            times * current_.denominator + previous_.denominator};
        rest_ = {rest_.denominator, rest_.numerator % rest_.denominator};
        previous_ = current_;
        current_ = next;
    }

private:
    Fraction rest_;
    Fraction previous_{0, 1};
    Fraction current_{1, 0};
};

/// The fraction nearest to the given one whose parts are not above these bounds. The whole part of
/// the given one is not above the bound of the numerator either.
constexpr Fraction nearestFraction(Fraction fraction, UInt128 largestNumerator,
                                   UInt128 largestDenominator) noexcept {
    Convergents convergents(fraction);
    while (!convergents.finished()) {
        const Fraction now = convergents.current();
        const Fraction before = convergents.previous();
        const UInt128 room = now.numerator == 0
                                 ? largestDenominator
                                 : (largestNumerator - before.numerator) / now.numerator;
        const UInt128 scaleRoom = now.denominator == 0
                                      ? largestNumerator
                                      : (largestDenominator - before.denominator) / now.denominator;
        const UInt128 times = room < scaleRoom ? room : scaleRoom;
        if (times < convergents.coefficient()) {
            // Past half of the coefficient the fraction in between is the nearer one, below it the
            // convergent.
            const UInt128 rest = convergents.coefficient() - times;
            if (times < rest || (times == rest && !convergents.isNearerAtHalf()))
                return now;
            return {times * now.numerator + before.numerator,
                    times * now.denominator + before.denominator};
        }
        convergents.advance();
    }
    return convergents.current();
}

/// Whether `exactFraction` can take the real: its lowest bit is at 2^-126 or above.
constexpr bool isExactFraction(double real) noexcept { return real >= 0x1p-74 && real < 0x1p63; }

/// The real as the fraction `numerator / 2^n` in its lowest terms.
constexpr Fraction exactFraction(double real) noexcept {
    constexpr int fractionBits = 52;
    constexpr int exponentBias = 1075; // the exponent of the lowest fraction bit is field - 1075
    const auto bits = std::bit_cast<std::uint64_t>(real);
    constexpr std::uint64_t leadingOne = std::uint64_t{1} << fractionBits;
    std::uint64_t digits = (bits & (leadingOne - 1)) | leadingOne;
    const int zeros = std::countr_zero(digits);
    const int exponent = static_cast<int>(bits >> fractionBits) - exponentBias + zeros;
    digits >>= zeros;
    return exponent >= 0 ? Fraction{UInt128{digits} << exponent, 1}
                         : Fraction{digits, UInt128{1} << -exponent};
}

/// The fraction with the smallest denominator among the convergents that is the real when divided
/// in double precision: 1/10 for 0.1.
constexpr Fraction simplestFraction(double real) noexcept {
    Convergents convergents(exactFraction(real));
    do
        convergents.advance();
    while (!convergents.finished() &&
           static_cast<double>(convergents.current().numerator) /
                   static_cast<double>(convergents.current().denominator) !=
               real);
    return convergents.current();
}

} // namespace zorvan::detail
