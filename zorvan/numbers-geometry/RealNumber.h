#pragma once

#include <zorvan/platform/foundation/NSNumber.h>

#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

/// Operations on reals, receiver first: `round(2.45, 1)`, `clamp(x, 0, 1)`.
///
/// They are templates over the receiver's type, so after `using namespace zorvan` a call such as
/// `round(x)` still resolves where the C library has a function of that name: the C function wins
/// and gives the same result.
///
/// Every conversion to an integer truncates toward zero, gives the nearest end of the signed 64-bit
/// range outside it, and 0 for NaN.

namespace zorvan {

/// The two real types of the machine that the library computes with.
template <class T>
concept BuiltInReal = std::same_as<T, double> || std::same_as<T, float>;

/// Truncated toward zero.
template <BuiltInReal T>
[[nodiscard]] constexpr std::int64_t intValue(T x) noexcept {
    return NSNumber(x).int64Value();
}
/// The same value in double precision.
template <BuiltInReal T>
[[nodiscard]] constexpr double doubleValue(T x) noexcept {
    return double{x};
}
/// The magnitude; positive zero for a negative one.
template <BuiltInReal T>
[[nodiscard]] T abs(T x) noexcept {
    return std::fabs(x);
}
/// The greatest integral value that is not above `x`.
template <BuiltInReal T>
[[nodiscard]] T floor(T x) noexcept {
    return std::floor(x);
}
/// The least integral value that is not below `x`.
template <BuiltInReal T>
[[nodiscard]] T ceil(T x) noexcept {
    return std::ceil(x);
}
/// The nearest integral value, halves away from zero: 2.5 gives 3, -2.5 gives -3.
template <BuiltInReal T>
[[nodiscard]] T round(T x) noexcept {
    return std::round(x);
}
/// The remainder of `x / y` with the sign of `x`.
template <BuiltInReal T>
[[nodiscard]] T mod(T x, std::type_identity_t<T> y) noexcept {
    return std::fmod(x, y);
}
/// As `std::pow`: NaN for a negative `x` and a `y` that is not integral.
template <BuiltInReal T>
[[nodiscard]] T pow(T x, std::type_identity_t<T> y) noexcept {
    return std::pow(x, y);
}
/// NaN below zero.
template <BuiltInReal T>
[[nodiscard]] T sqrt(T x) noexcept {
    return std::sqrt(x);
}

/// A real type: built from `double`, `float` and `long double`, with arithmetic, comparison and the
/// nine functions above. `double` and `float` are; another type joins by giving those functions in
/// its own namespace.
template <class T>
concept RealNumber = std::regular<T> && std::totally_ordered<T> && requires(T x, T y) {
    T(1.0);
    T(1.0F);
    T(1.0L);
    { x + y } -> std::convertible_to<T>;
    { x - y } -> std::convertible_to<T>;
    { x* y } -> std::convertible_to<T>;
    { x / y } -> std::convertible_to<T>;
    { -x } -> std::convertible_to<T>;
    { intValue(x) } -> std::same_as<std::int64_t>;
    { doubleValue(x) } -> std::same_as<double>;
    { abs(x) } -> std::same_as<T>;
    { floor(x) } -> std::same_as<T>;
    { ceil(x) } -> std::same_as<T>;
    { round(x) } -> std::same_as<T>;
    { mod(x, y) } -> std::same_as<T>;
    { pow(x, y) } -> std::same_as<T>;
    { sqrt(x) } -> std::same_as<T>;
};

/// The number's value: its `float` value for `float`, its `double` value for every other type.
template <RealNumber T>
[[nodiscard]] constexpr T realValue(const NSNumber& number) noexcept {
    if constexpr (std::same_as<T, float>)
        return number.floatValue();
    else
        return T(number.doubleValue());
}
/// The number's `double` value.
[[nodiscard]] constexpr double cgFloatValue(const NSNumber& number) noexcept {
    return number.doubleValue();
}

namespace detail {

/// `x` as it was rounded. Where the processor multiplies and adds in one step, a compiler may leave
/// out the rounding in between, and two equal products then differ. What is compared exactly goes
/// through this, as applications may be compiled for such a processor.
template <RealNumber T>
[[nodiscard]] constexpr T settled(T x) noexcept {
    if constexpr (BuiltInReal<T>) {
        if (!std::is_constant_evaluated()) {
#if defined(__x86_64__)
            __asm__("" : "+x"(x));
#elif defined(__aarch64__)
            __asm__("" : "+w"(x));
#else
            __asm__("" : "+m"(x));
#endif
        }
    }
    return x;
}

} // namespace detail

/// `pow(10, places)` in the type `T`.
template <RealNumber T>
[[nodiscard]] T powerOfTen(std::int64_t places) noexcept {
    constexpr std::array exact{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};
    if (places >= 0 && places < static_cast<std::int64_t>(exact.size()))
        return T(exact[static_cast<std::size_t>(places)]);
    return pow(T(10.0), T(static_cast<double>(places)));
}

/// Rounded (halves away from zero), down or up to an integer.
/// @{
template <RealNumber T>
[[nodiscard]] std::int64_t roundInt(T x) noexcept {
    return intValue(round(x));
}
template <RealNumber T>
[[nodiscard]] std::int64_t floorInt(T x) noexcept {
    return intValue(floor(x));
}
template <RealNumber T>
[[nodiscard]] std::int64_t ceilInt(T x) noexcept {
    return intValue(ceil(x));
}
/// @}

/// Rounded to `places` decimal places; a negative count rounds to tens, hundreds and so on.
template <RealNumber T>
[[nodiscard]] T round(T x, std::int64_t places) noexcept {
    const T scale = powerOfTen<T>(places);
    return round(x * scale) / scale;
}
/// Truncated toward zero at `places` decimal places, by way of a 64-bit integer.
template <RealNumber T>
[[nodiscard]] T truncate(T x, std::int64_t places) noexcept {
    const T scale = powerOfTen<T>(places);
    return T(static_cast<double>(intValue(x * scale))) / scale;
}
/// Rounded to `places` decimal places, then truncated toward zero.
template <RealNumber T>
[[nodiscard]] std::int64_t roundInt(T x, std::int64_t places) noexcept {
    return intValue(round(x, places));
}

/// Whether both round to the same value at `places` decimal places: `round(x * 10^places)` equals
/// `round(other * 10^places)`, in plain binary arithmetic.
template <RealNumber T>
[[nodiscard]] bool isSimilarTo(T x, std::type_identity_t<T> other, std::int64_t places) noexcept {
    const T scale = powerOfTen<T>(places);
    return round(x * scale) == round(other * scale);
}
/// Whether `x - other` lies in `[-tolerance, tolerance]`. Never for NaN or a negative tolerance.
template <RealNumber T>
[[nodiscard]] constexpr bool overlap(T x, std::type_identity_t<T> other,
                                     std::type_identity_t<T> tolerance) noexcept {
    const T difference = detail::settled(x) - detail::settled(other);
    return difference >= -tolerance && difference <= tolerance;
}

/// `min` when the bounds are in the wrong order.
template <RealNumber T>
[[nodiscard]] constexpr T clamp(T x, std::type_identity_t<T> min,
                                std::type_identity_t<T> max) noexcept {
    const T lowered = max < x ? max : x;
    return lowered < min ? min : lowered;
}
/// `at` when `x` lies strictly within `delta` of it, else `x`.
template <RealNumber T>
[[nodiscard]] constexpr T glue(T x, std::type_identity_t<T> at,
                               std::type_identity_t<T> delta) noexcept {
    return x <= at - delta || at + delta <= x ? x : at;
}
/// The remainder of `x / m`, moved up by `m` when negative.
template <RealNumber T>
[[nodiscard]] T positiveMod(T x, std::type_identity_t<T> m) noexcept {
    const T remainder = mod(x, m);
    return remainder < T(0.0) ? remainder + m : remainder;
}
/// Whether it has no fraction; infinities count as integers, NaN does not.
template <RealNumber T>
[[nodiscard]] bool isInteger(T x) noexcept {
    return floor(x) == x;
}
/// 1 for zero and above, else -1.
template <RealNumber T>
[[nodiscard]] constexpr T sign(T x) noexcept {
    return x >= T(0.0) ? T(1.0) : T(-1.0);
}
/// `x` when it is zero or above, else `-x`.
template <RealNumber T>
[[nodiscard]] constexpr T norm(T x) noexcept {
    return x >= T(0.0) ? x : -x;
}
/// `x * 255`, truncated and not clamped: 1.0 gives 255, 0.999 gives 254.
template <RealNumber T>
[[nodiscard]] constexpr std::int64_t toByte(T x) noexcept {
    return intValue(x * T(255.0));
}

/// 25.4 mm and 72 points are an inch; the factors have six to ten digits, so that a way there and
/// back is not exact.
/// @{
template <RealNumber T>
[[nodiscard]] constexpr T mm2inches(T x) noexcept {
    return x * T(0.0393700787);
}
template <RealNumber T>
[[nodiscard]] constexpr T mm2points(T x) noexcept {
    return x * T(2.834645669);
}
template <RealNumber T>
[[nodiscard]] constexpr T points2inches(T x) noexcept {
    return x * T(0.0138889);
}
template <RealNumber T>
[[nodiscard]] constexpr T points2mm(T x) noexcept {
    return x * T(0.352778);
}
/// @}
/// Durations: a day has 86,400 seconds, a week seven days.
/// @{
template <RealNumber T>
[[nodiscard]] constexpr T days2seconds(T x) noexcept {
    return x * T(86400.0);
}
template <RealNumber T>
[[nodiscard]] constexpr T weeks2seconds(T x) noexcept {
    return x * T(604800.0);
}
/// @}

/// Uniform over all values, from the system's generator.
[[nodiscard]] std::uint32_t randomUInt32();

/// A uniform 32-bit draw as a real: 0 to 4,294,967,295. `randomValue<double>()`.
template <RealNumber T>
[[nodiscard]] T randomValue() {
    return T(static_cast<double>(randomUInt32()));
}
/// One of the hundred values 0, 0.01, ..., 0.99.
template <RealNumber T>
[[nodiscard]] T randomUnitValue() {
    return T(static_cast<double>(randomUInt32() % 100)) / T(100.0);
}
/// `min + randomUnitValue() * (max - min)`: never `max`.
template <RealNumber T>
[[nodiscard]] T randomValue(std::type_identity_t<T> min, std::type_identity_t<T> max) {
    return min + randomUnitValue<T>() * (max - min);
}

/// What `fraction` gives.
struct Fraction {
    std::int64_t numerator;   ///< With the sign of the number.
    std::int64_t denominator; ///< Positive.

    friend constexpr bool operator==(const Fraction&, const Fraction&) = default;
};

/// The first convergent of the continued fraction of `x` whose error is within a tolerance that
/// tightens with the denominator: `fraction(0.75, 1e-6)` is 3/4.
///
/// The denominator is positive. A threshold below 1e-8 counts as 1e-8. NaN and infinities give 0/1;
/// where the next convergent would leave the signed 64-bit range, the last one stands.
template <RealNumber T>
[[nodiscard]] Fraction fraction(T x, std::type_identity_t<T> errorThreshold) noexcept {
    const auto isFinite = [](T value) { return value - value == T(0.0); };
    const auto next = [](std::int64_t older, std::int64_t quotient, std::int64_t newer,
                         std::int64_t& result) {
        std::int64_t product = 0;
        return !__builtin_mul_overflow(quotient, newer, &product) &&
               !__builtin_add_overflow(older, product, &result);
    };
    T y = x;
    T a = floor(y);
    if (!isFinite(y) || !isFinite(a))
        return {0, 1};
    const T threshold = errorThreshold > T(1e-8) ? errorThreshold : T(1e-8);
    Fraction current{intValue(a), 1};
    Fraction previous{1, 0};
    const auto tolerance = [&] {
        const T k = T(static_cast<double>(current.denominator));
        return threshold * k * k;
    };
    while (y - a > tolerance()) {
        y = T(1.0) / (y - a);
        a = floor(y);
        Fraction following{};
        if (!isFinite(y) || !isFinite(a) ||
            !next(previous.numerator, intValue(a), current.numerator, following.numerator) ||
            !next(previous.denominator, intValue(a), current.denominator, following.denominator))
            break;
        previous = current;
        current = following;
    }
    return current;
}

/// The shortest decimal text that reads back to the same double: "0.0", "1.5", "-0.0".
///
/// Plain digits, with at least one after the point, for zero and for magnitudes from 1e-4 up to but
/// not including 1e16; an exponent of at least two digits beyond ("1e+21", "1.5e-07", "5e-324");
/// "inf", "-inf" and, whatever its sign, "nan".
[[nodiscard]] std::string description(double x);

} // namespace zorvan
