#pragma once

#include <concepts>
#include <type_traits>
#include <utility>

#if __cplusplus < 202002L
#error "Zorvan needs C++20: -std=c++20"
#endif

namespace zorvan {

/// A field of an argument record that the caller must name: with no default constructor, it tells
/// overloads apart. `CGRect({.size = s})` cannot mean the record with a required `center`.
template <class T>
struct Required {
    T value; ///< What was given.

    /// Whatever makes a `T`.
    template <class... Arguments>
    requires(sizeof...(Arguments) > 0 &&
             std::constructible_from<T, Arguments...>) constexpr Required(Arguments&&... arguments)
        : value(std::forward<Arguments>(arguments)...) {}
    /// An aggregate from its fields, for compilers that make none from parentheses.
    template <class... Arguments>
    requires(std::is_aggregate_v<T> && !std::constructible_from<T, Arguments...> &&
             requires(Arguments && ... fields) {
                 T{std::forward<Arguments>(fields)...};
             }) constexpr Required(Arguments&&... fields)
        : value{std::forward<Arguments>(fields)...} {}
    /// An integer for a real, which -Wconversion would otherwise report from in here.
    template <std::integral Integer>
    requires std::floating_point<T>
    constexpr Required(Integer integer) : value(static_cast<T>(integer)) {}

    /// The value, wherever a `T` goes.
    constexpr operator const T&() const noexcept { return value; }
};

} // namespace zorvan
