#pragma once

#include <zorvan/platform/foundation/NSNumber.h>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <type_traits>

namespace zorvan {

class NSUserDefaults;

/// Turns values of one type into what the settings store keeps under a key, and back. A coder holds
/// no state; it alone decides the stored form.
///
/// - `decode(from, key)` is absent when nothing usable is stored.
/// - `encode(value, to, key)` writes the stored form; an absent value removes the key, unless the
///   coder says otherwise. It reports nothing and posts nothing.
/// - `hasStoredForm(value)`, which only coders have that cannot store every value of their type, is
///   false for a value that they cannot store. `NSUserDefaults::modify` does not write that one.
template <class C>
concept UserDefaultsCoder = std::default_initializable<C> &&
    requires(const C& coder, NSUserDefaults& store, std::string_view key,
             const std::optional<typename C::CodableType>& value) {
    { coder.decode(store, key) } -> std::same_as<std::optional<typename C::CodableType>>;
    coder.encode(value, store, key);
};

namespace detail {

template <class C>
bool hasStoredForm(const C& coder, const std::optional<typename C::CodableType>& value) {
    if constexpr (requires { coder.hasStoredForm(*value); })
        return !value || coder.hasStoredForm(*value);
    else
        return true;
}

/// The nearest integer toward zero that there is of the type, and 0 for NaN.
template <std::integral T>
constexpr T nearest(double real) noexcept {
    using Limits = std::numeric_limits<T>;
    if constexpr (std::unsigned_integral<T>)
        return static_cast<T>(std::min<std::uint64_t>(NSNumber(real).uint64Value(), Limits::max()));
    else
        return static_cast<T>(
            std::clamp<std::int64_t>(NSNumber(real).int64Value(), Limits::min(), Limits::max()));
}

/// The sum or difference, or the nearest number there is.
template <class T, class Operand>
constexpr T saturated(T a, Operand b, bool adds) noexcept {
    if constexpr (std::is_floating_point_v<T>) {
        return adds ? a + b : a - b;
    } else if constexpr (std::is_floating_point_v<Operand>) {
        const auto real = static_cast<double>(a), change = static_cast<double>(b);
        return nearest<T>(adds ? real + change : real - change);
    } else {
        T result{};
        const bool overflows =
            adds ? __builtin_add_overflow(a, b, &result) : __builtin_sub_overflow(a, b, &result);
        if (!overflows)
            return result;
        return (b > 0) == adds ? std::numeric_limits<T>::max() : std::numeric_limits<T>::min();
    }
}

} // namespace detail

/// What coders of numbers share.
template <class Self, class Number>
class NumericUserDefaultsCoder {
public:
    using CodableType = Number; ///< What is coded.

    /// Adds to the stored number. Does nothing when none is stored. An integer stays at the end of
    /// its range. Posts nothing.
    void increment(Number by, NSUserDefaults& of, std::string_view for_) const {
        change(by, of, for_, true);
    }
    /// Subtracts from it, likewise.
    void decrement(Number by, NSUserDefaults& of, std::string_view for_) const {
        change(by, of, for_, false);
    }

private:
    void change(Number by, NSUserDefaults& store, std::string_view key, bool adds) const {
        const auto& self = static_cast<const Self&>(*this);
        if (const std::optional<Number> current = self.decode(store, key))
            self.encode(detail::saturated(*current, by, adds), store, key);
    }
};

} // namespace zorvan
