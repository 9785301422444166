#pragma once

#include <cstdint>
#include <limits>

namespace zorvan {

/// A boxed number: a truth value, a 64-bit integer or a 64-bit real, which remembers which of them
/// it was made from. An integer is signed unless it is too large for that.
class NSNumber {
public:
    /// Of that kind; a float becomes a double, an integer that fits a signed one.
    /// @{
    constexpr NSNumber(bool value) noexcept : kind_(Kind::truth), signed_(value) {}
    constexpr NSNumber(int value) noexcept : NSNumber(std::int64_t{value}) {}
    constexpr NSNumber(std::int64_t value) noexcept : kind_(Kind::signed_), signed_(value) {}
    constexpr NSNumber(std::uint64_t value) noexcept : NSNumber(static_cast<std::int64_t>(value)) {
        if (value > largestSigned)
            kind_ = Kind::unsigned_;
    }
    constexpr NSNumber(double value) noexcept : kind_(Kind::real), real_(value) {}
    constexpr NSNumber(float value) noexcept : NSNumber(double{value}) {}
    /// @}

    /// Which kind it is; exactly one of truth value, integer and real.
    /// @{
    constexpr bool isBool() const noexcept { return kind_ == Kind::truth; }
    constexpr bool isInteger() const noexcept { return kind_ == Kind::signed_ || isUnsigned(); }
    /// @}
    /// An integer above the largest signed one.
    constexpr bool isUnsigned() const noexcept { return kind_ == Kind::unsigned_; }
    /// A `float` or `double`.
    constexpr bool isReal() const noexcept { return kind_ == Kind::real; }

    /// False for zero, true for everything else.
    constexpr bool boolValue() const noexcept { return doubleValue() != 0; }

    /// The nearest real; a truth value is 1 or 0.
    /// @{
    constexpr double doubleValue() const noexcept {
        if (isReal())
            return real_;
        return isUnsigned() ? static_cast<double>(uint64Value()) : static_cast<double>(signed_);
    }

    constexpr float floatValue() const noexcept { return static_cast<float>(doubleValue()); }
    /// @}

    /// A real is truncated toward zero; a number outside the signed 64-bit range becomes the
    /// nearest end of it, and NaN becomes 0.
    constexpr std::int64_t int64Value() const noexcept {
        if (isReal())
            return truncated(real_);
        return isUnsigned() ? std::numeric_limits<std::int64_t>::max() : signed_;
    }

    /// The same for the unsigned range.
    constexpr std::uint64_t uint64Value() const noexcept {
        if (isUnsigned())
            return static_cast<std::uint64_t>(signed_);
        constexpr double signedLimit = 9223372036854775808.0; // 2^63
        if (isReal() && doubleValue() >= signedLimit)
            return doubleValue() < 2 * signedLimit ? static_cast<std::uint64_t>(doubleValue())
                                                   : std::numeric_limits<std::uint64_t>::max();
        return int64Value() > 0 ? static_cast<std::uint64_t>(int64Value()) : 0;
    }

    /// Equal in value, whatever they were made from: `NSNumber(true) == NSNumber(1.0)`.
    friend constexpr bool operator==(const NSNumber& a, const NSNumber& b) noexcept {
        if (a.isReal() != b.isReal())
            return a.isReal() ? a.equalsInteger(b) : b.equalsInteger(a);
        if (a.isReal())
            return a.real_ == b.real_;
        if (a.isUnsigned() || b.isUnsigned())
            return a.uint64Value() == b.uint64Value();
        return a.int64Value() == b.int64Value();
    }

private:
    /// Whether a real is this integer. Above 2^53 it may only be the nearest one there is.
    constexpr bool equalsInteger(const NSNumber& integer) const noexcept {
        constexpr double unsignedLimit = 18446744073709551616.0; // 2^64
        return real_ == integer.doubleValue() && real_ < unsignedLimit &&
               int64Value() == integer.int64Value() && uint64Value() == integer.uint64Value();
    }

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

    enum class Kind : std::uint8_t { truth, signed_, unsigned_, real };
    Kind kind_;
    union {
        std::int64_t signed_; // of an unsigned number the same bits, of a truth value 0 or 1
        double real_;
    };
};

} // namespace zorvan
