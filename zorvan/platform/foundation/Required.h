#pragma once

#include <concepts>
#include <utility>

namespace zorvan {

/// A field of an argument record that the caller must name.
///
/// It has no default constructor, so a record that holds one cannot be made without it. That is what
/// tells overloads apart: `CGRect({.size = s})` cannot mean the record with a required `center`.
template <class T>
struct Required {
    T value;

    template <class... Arguments>
        requires(sizeof...(Arguments) > 0 && std::constructible_from<T, Arguments...>)
    constexpr Required(Arguments&&... arguments) : value(std::forward<Arguments>(arguments)...) {}
    /// An integer for a real, which -Wconversion would otherwise report from in here.
    template <std::integral Integer>
        requires std::floating_point<T>
    constexpr Required(Integer integer) : value(static_cast<T>(integer)) {}

    constexpr operator const T&() const noexcept { return value; }
};

} // namespace zorvan
