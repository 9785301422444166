#pragma once

#include <cstdint>
#include <limits>
#include <variant>

namespace zorvan {

/// A boxed number: a truth value, a 64-bit integer or a 64-bit real, which remembers which of them
/// it was made from. An integer is signed unless it is too large for that.
class NSNumber {
public:
    /// Of that kind; a float becomes a double, an integer that fits a signed one.
    /// @{
    constexpr NSNumber(bool value) noexcept : value_(value) {}
    constexpr NSNumber(int value) noexcept : value_(std::int64_t{value}) {}
    constexpr NSNumber(std::int64_t value) noexcept : value_(value) {}
    constexpr NSNumber(std::uint64_t value) noexcept : value_(static_cast<std::int64_t>(value)) {
        if (value > largestSigned)
            value_ = value;
    }
    constexpr NSNumber(double value) noexcept : value_(value) {}
    constexpr NSNumber(float value) noexcept : value_(double{value}) {}
    /// @}

    /// Which kind it is; exactly one of truth value, integer and real.
    /// @{
    constexpr bool isBool() const noexcept { return std::holds_alternative<bool>(value_); }
    constexpr bool isInteger() const noexcept {
        return std::holds_alternative<std::int64_t>(value_) || isUnsigned();
    }
    /// @}
    /// An integer above the largest signed one.
    constexpr bool isUnsigned() const noexcept {
        return std::holds_alternative<std::uint64_t>(value_);
    }
    /// A `float` or `double`.
    constexpr bool isReal() const noexcept { return std::holds_alternative<double>(value_); }

    /// False for zero, true for everything else.
    constexpr bool boolValue() const noexcept { return doubleValue() != 0; }

    /// The nearest real; a truth value is 1 or 0.
    /// @{
    constexpr double doubleValue() const noexcept {
        if (const double* real = std::get_if<double>(&value_))
            return *real;
        if (const auto* large = std::get_if<std::uint64_t>(&value_))
            return static_cast<double>(*large);
        return static_cast<double>(int64Value());
    }

    constexpr float floatValue() const noexcept { return static_cast<float>(doubleValue()); }
    /// @}

    /// A real is truncated toward zero; a number outside the signed 64-bit range becomes the
    /// nearest end of it, and NaN becomes 0.
    constexpr std::int64_t int64Value() const noexcept {
        if (const double* real = std::get_if<double>(&value_))
            return truncated(*real);
        if (const bool* truth = std::get_if<bool>(&value_))
            return *truth ? 1 : 0;
        if (isUnsigned())
            return std::numeric_limits<std::int64_t>::max();
        return std::get<std::int64_t>(value_);
    }

    /// The same for the unsigned range.
    constexpr std::uint64_t uint64Value() const noexcept {
        if (const auto* large = std::get_if<std::uint64_t>(&value_))
            return *large;
        constexpr double signedLimit = 9223372036854775808.0; // 2^63
        if (isReal() && doubleValue() >= signedLimit)
            return doubleValue() < 2 * signedLimit ? static_cast<std::uint64_t>(doubleValue())
                                                   : std::numeric_limits<std::uint64_t>::max();
        return int64Value() > 0 ? static_cast<std::uint64_t>(int64Value()) : 0;
    }

    /// Equal in value, whatever they were made from: `NSNumber(true) == NSNumber(1.0)`.
    friend constexpr bool operator==(const NSNumber& a, const NSNumber& b) noexcept {
        if (a.isReal() || b.isReal())
            return a.doubleValue() == b.doubleValue();
        if (a.isUnsigned() || b.isUnsigned())
            return a.uint64Value() == b.uint64Value();
        return a.int64Value() == b.int64Value();
    }

private:
    static constexpr std::int64_t truncated(double real) noexcept {
        constexpr double limit = 9223372036854775808.0; // 2^63
        if (real != real)
            return 0;
        if (real >= limit)
            return std::numeric_limits<std::int64_t>::max();
        if (real < -limit)
            return std::numeric_limits<std::int64_t>::min();
        return static_cast<std::int64_t>(real);
    }

    static constexpr std::uint64_t largestSigned = std::numeric_limits<std::int64_t>::max();

    std::variant<bool, std::int64_t, std::uint64_t, double> value_;
};

} // namespace zorvan
