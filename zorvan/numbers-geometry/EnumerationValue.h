#pragma once

#include <zorvan/platform/foundation/Required.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace zorvan {

/// What every enumeration with operations shares: raw values from 0 to `count - 1` in order of
/// declaration, equality and a hash.
///
/// `Self` declares its cases in an `enum class Case`, converts from and to it, and has a constant
/// of its own type for each, so that its values work in a `switch` and have members.
template <class Self, std::int64_t count>
class EnumerationValue {
public:
    /// The place of a case in the order of declaration, from 0.
    struct RawValue {
        Required<std::int64_t> rawValue;
    };
    /// Absent when no case has that raw value: `Orientation::make({.rawValue = 2})`.
    [[nodiscard]] static constexpr std::optional<Self> make(RawValue argument) noexcept {
        if (argument.rawValue < 0 || argument.rawValue >= count)
            return std::nullopt;
        return Self(static_cast<typename Self::Case>(argument.rawValue.value));
    }
    /// The place of the case in the order of declaration, from 0.
    [[nodiscard]] constexpr std::int64_t rawValue() const noexcept { return raw_; }

    /// The other one of two cases.
    /// @{
    [[nodiscard]] constexpr Self toggled() const noexcept requires(count == 2) {
        return Self(static_cast<typename Self::Case>(1 - raw_));
    }
    constexpr void toggle() noexcept requires(count == 2) { static_cast<Self&>(*this) = toggled(); }
    /// @}

    friend constexpr bool operator==(const EnumerationValue&, const EnumerationValue&) = default;

protected:
    /// From a case, or a raw value below `count`, which is not checked.
    template <class Case>
    explicit constexpr EnumerationValue(Case value) noexcept
        : raw_(static_cast<std::uint8_t>(value)) {}

private:
    std::uint8_t raw_;
};

namespace detail {

template <class Self, std::int64_t count>
void takeEnumerationValue(const EnumerationValue<Self, count>&);

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
