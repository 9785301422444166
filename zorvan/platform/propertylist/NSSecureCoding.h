#pragma once

#include <zorvan/platform/foundation/RawRepresentable.h>

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace zorvan {

class NSKeyedArchiver;
class NSKeyedUnarchiver;

namespace detail {

template <class T, class Made>
concept ValueOrShared = std::same_as<Made, T> || std::same_as<Made, std::shared_ptr<T>>;

template <class T>
concept DecodesItself = requires(const NSKeyedUnarchiver& coder) {
    requires ValueOrShared<T, decltype(T::decode(coder))>;
};

} // namespace detail

/// A class of your own that goes into archives:
///
/// ```cpp
/// struct Account {
///     static constexpr std::string_view archivedClassName = "Account";
///     std::string name;
///     std::int64_t port = 0;
///
///     void encode(NSKeyedArchiver& coder) const {
///         coder.encode(name, "name");
///         coder.encode(port, "port");
///     }
///     static Account decode(const NSKeyedUnarchiver& coder) {
///         return {coder.decode<std::string>("name"), coder.decode<std::int64_t>("port")};
///     }
/// };
/// ```
///
/// `archivedClassName` is the tag in the archive, by which it is told whether an object is of the
/// class that was asked for; keep it when the class is renamed. `decode` gives the object, or a
/// shared pointer to it for a class that is shared by reference. It must take every archive for
/// hostile: each field is checked for its class, but what it means is for `decode` to check.
template <class T>
concept NSSecureCoding = requires(const T& value, NSKeyedArchiver& archiver) {
    { T::archivedClassName } -> std::convertible_to<std::string_view>;
    value.encode(archiver);
}
&&detail::DecodesItself<T>;

namespace detail {

template <class T>
using RawValueOf = decltype(RawRepresentation<T>::rawValue(std::declval<const T&>()));

} // namespace detail

/// A type whose values are named by a text or an integer, as `RawRepresentation` says; archived as
/// that.
template <class T>
concept ArchivedByRawValue = !NSSecureCoding<T> && requires(const detail::RawValueOf<T>& raw) {
    { RawRepresentation<T>::make(raw) } -> std::convertible_to<std::optional<T>>;
    requires std::convertible_to<detail::RawValueOf<T>, std::string_view> ||
        std::integral<detail::RawValueOf<T>>;
};

} // namespace zorvan
