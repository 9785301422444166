#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace zorvan {

/// What every enumeration with operations shares: `count` raw values from `first` on in order of
/// declaration, equality and a hash.
///
/// `Self` declares its cases in an `enum class Case`, converts from and to it, and has a constant
/// of its own type for each, so that its values work in a `switch` and have members.
template <class Self, std::int64_t count, std::int64_t first = 0>
class EnumerationValue {
public:
    /// The place of a case in the order of declaration, from `first`.
    struct RawValue {
        Required<std::int64_t> rawValue;
    };
    /// Absent when no case has that raw value: `Orientation::make({.rawValue = 2})`.
    [[nodiscard]] static constexpr std::optional<Self> make(RawValue argument) noexcept {
        if (argument.rawValue < first || argument.rawValue >= first + count)
            return std::nullopt;
        return Self(static_cast<typename Self::Case>(argument.rawValue.value - first));
    }
    /// The place of the case in the order of declaration, from `first`.
    [[nodiscard]] constexpr std::int64_t rawValue() const noexcept { return raw_; }

    /// The other one of two cases.
    /// @{
    [[nodiscard]] constexpr Self toggled() const noexcept requires(count == 2) {
        return Self(static_cast<typename Self::Case>(first + 1 - raw_));
    }
    constexpr void toggle() noexcept requires(count == 2) { static_cast<Self&>(*this) = toggled(); }
    /// @}

    friend constexpr bool operator==(const EnumerationValue&, const EnumerationValue&) = default;

protected:
    template <class Case>
    explicit constexpr EnumerationValue(Case value) noexcept
        : raw_(static_cast<std::uint8_t>(first + static_cast<std::int64_t>(value))) {}

private:
    std::uint8_t raw_;
};

namespace detail {

template <class Self, std::int64_t count, std::int64_t first>
void takeEnumerationValue(const EnumerationValue<Self, count, first>&);

} // namespace detail

/// A type that derives from `EnumerationValue`.
template <class T>
concept EnumerationWithRawValue = requires(const T& value) {
    detail::takeEnumerationValue(value);
};

} // namespace zorvan

template <zorvan::EnumerationWithRawValue T>
struct std::hash<T> {
    std::size_t operator()(const T& value) const noexcept {
        return static_cast<std::size_t>(value.rawValue());
    }
};
