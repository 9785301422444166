#pragma once

#include <zorvan/numbers-geometry/RealNumber.h>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <string>

/// Operations on signed integers, receiver first. They compute and answer in 64 bits, whatever the
/// type of the receiver; a result outside the signed 64-bit range is the nearest end of it.
///
/// After `using namespace zorvan`, a plain call that the standard library or the C library answers
/// is theirs: `pow(2, -1)` is 0.5, `zorvan::pow(2, -1)` is 0.

namespace zorvan {

/// The receiver of an operation whose name the standard library has too. The conversion to it is
/// what makes the standard function win a plain call.
struct IntegerOperand { ///< The integer, as wide as it gets.
    std::int64_t value;

    template <std::signed_integral T>
    /// Any signed integer.
    constexpr IntegerOperand(T integer) noexcept : value(integer) {}
};

/// 1 for zero and above, else -1.
template <std::signed_integral T>
[[nodiscard]] constexpr std::int64_t sign(T x) noexcept {
    return x < 0 ? -1 : 1;
}
/// The magnitude; the largest integer for the smallest one, whose magnitude has no integer.
template <std::signed_integral T>
[[nodiscard]] constexpr std::int64_t abs(T x) noexcept {
    const std::int64_t wide = x;
    return wide == INT64_MIN ? INT64_MAX : wide < 0 ? -wide : wide;
}
/// `x` to the power `y`, computed in `double` and truncated toward zero.
[[nodiscard]] std::int64_t pow(IntegerOperand x, IntegerOperand y) noexcept;
/// `2 * 3 * ... * x`; 1 below 2, and the largest integer above 20, where the product leaves the
/// range.
template <std::signed_integral T>
[[nodiscard]] constexpr std::int64_t factorial(T x) noexcept {
    if (x > 20)
        return INT64_MAX;
    std::int64_t product = 1;
    for (std::int64_t factor = 2; factor <= x; ++factor)
        product *= factor;
    return product;
}
/// `min` when the bounds are in the wrong order.
[[nodiscard]] constexpr std::int64_t clamp(IntegerOperand x, std::int64_t min,
                                           std::int64_t max) noexcept {
    return std::max(min, std::min(x.value, max));
}
using std::max;
using std::min;

/// Uniform in 0 to 2,147,483,646. `random<std::int64_t>()`.
template <std::same_as<std::int64_t> T>
[[nodiscard]] T random() {
    // Twice the bound is two below 2^32, so refusing two draws leaves every rest equally likely.
    constexpr std::uint32_t bound = 2147483647;
    std::uint32_t draw = randomUInt32();
    while (draw >= 2 * bound)
        draw = randomUInt32();
    return draw % bound;
}
/// `(max - min) * (r / 100) + min` in single precision, truncated, for one of a hundred `r`: never
/// `max`, and without the low digits of large bounds.
template <std::same_as<std::int64_t> T>
[[nodiscard]] T randomValue(std::int64_t min, std::int64_t max) {
    const auto low = static_cast<float>(min);
    const auto high = static_cast<float>(max);
    return intValue((high - low) * randomUnitValue<float>() + low);
}

/// `x` when `divisor` is 0; else the rest of the truncated division, moved by `divisor` when it is
/// negative. Below a divisor of -2^62 that may wrap around.
template <std::signed_integral T>
[[nodiscard]] constexpr std::int64_t positiveRemainder(T x, std::int64_t divisor) noexcept {
    if (divisor == 0)
        return x;
    // The smallest integer divided by -1 overflows, though the rest is plain.
    const std::int64_t rest = divisor == -1 ? 0 : x % divisor;
    const auto moved = static_cast<std::uint64_t>(rest) + static_cast<std::uint64_t>(divisor);
    return rest < 0 ? static_cast<std::int64_t>(moved) : rest;
}

/// In decimal, padded with zeros to as many digits as `n` has: `zeroPadded(5, 100)` is "005". A
/// minus sign counts as a digit; nothing is padded when `n` is below 1.
[[nodiscard]] std::string zeroPadded(std::int64_t x, std::int64_t n);

} // namespace zorvan
