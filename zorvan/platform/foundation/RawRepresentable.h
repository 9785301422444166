#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zorvan {

/// How values of a type stand for raw values, texts or integers. Any type with `rawValue()` and
/// `make({.rawValue = …})` is known. For another, such as an `enum class`, say it:
///
/// ```cpp
/// enum class Sorting { byName, byDate };
///
/// template <>
/// struct zorvan::RawRepresentation<Sorting> {
///     static std::int64_t rawValue(Sorting value) { return value == Sorting::byName ? 0 : 1; }
///     static std::optional<Sorting> make(std::int64_t raw) {
///         if (raw < 0 || raw > 1)
///             return std::nullopt;
///         return raw == 0 ? Sorting::byName : Sorting::byDate;
///     }
/// };
/// ```
template <class E>
struct RawRepresentation {
    /// The raw value of a case.
    template <class Value = E>
    requires requires(const Value& value) { value.rawValue(); }
    static auto rawValue(const Value& value) { return value.rawValue(); }
    /// The case of a raw value; absent when there is none.
    template <class Raw, class Value = E>
    requires requires(const Raw& raw) { Value::make({.rawValue = raw}); }
    static std::optional<E> make(const Raw& raw) { return Value::make({.rawValue = raw}); }
};

/// A type whose values stand for texts.
template <class E>
concept StringRawRepresentable = requires(const E& value, std::string_view raw) {
    { RawRepresentation<E>::rawValue(value) } -> std::convertible_to<std::string_view>;
    { RawRepresentation<E>::make(raw) } -> std::same_as<std::optional<E>>;
};

/// A type whose values stand for integers.
template <class E>
concept IntegerRawRepresentable = requires(const E& value, std::int64_t raw) {
    { RawRepresentation<E>::rawValue(value) } -> std::convertible_to<std::int64_t>;
    { RawRepresentation<E>::make(raw) } -> std::same_as<std::optional<E>>;
};

/// A type whose values stand for texts or integers.
template <class E>
concept RawRepresentable = StringRawRepresentable<E> || IntegerRawRepresentable<E>;

} // namespace zorvan
