#pragma once

#include <zorvan/platform/foundation/Required.h>
#include <zorvan/settings/UserDefaultsCoder.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace zorvan {

class BoolUDC;
class BundleVersionUDC;
class DateUDC;
class IntUDC;
template <class Coder>
class EvaluedUserDefaultsKey;
template <class Coder>
class OptionalUserDefaultsKey;

/// The base of all keys, and the name under which they are declared. Your own may go into a class
/// that derives from it:
///
/// ```cpp
/// struct Keys : UserDefaultsKeys {
///     static inline const EvaluedUserDefaultsKey<IntUDC> columns{{.name = "Columns", .value = 4}};
/// };
/// ```
///
/// Keys never change, are not copied, and keep nothing of what is stored: every read and write goes
/// to the store.
class UserDefaultsKeys {
public:
    UserDefaultsKeys() = default;
    UserDefaultsKeys(const UserDefaultsKeys&) = delete;
    UserDefaultsKeys& operator=(const UserDefaultsKeys&) = delete;

    // Of launch tracking; link `Zorvan::LaunchTracking`. Made on first use.

    /// "VersionNumber": the version that ran last; `BundleVersion::zero` by default.
    static const EvaluedUserDefaultsKey<BundleVersionUDC>& versionNumber();
    /// "VersionDidUpdate": whether this launch is the first after an increase; false by default.
    static const EvaluedUserDefaultsKey<BoolUDC>& versionDidUpdate();
    /// "LaunchesCount"; 0 by default.
    static const EvaluedUserDefaultsKey<IntUDC>& launchesCount();
    /// "FirstLaunchDate".
    static const OptionalUserDefaultsKey<DateUDC>& firstLaunchDate();
    /// "UpdateLaunchDate": of the launch that first ran an increased version.
    static const OptionalUserDefaultsKey<DateUDC>& updateLaunchDate();
};

namespace detail {

/// A coder within a key: by value, but a class with virtual operations by reference, so that one
/// derived from it keeps its own.
template <class Coder>
using HeldCoder =
    std::conditional_t<std::is_polymorphic_v<Coder>, std::shared_ptr<const Coder>, Coder>;

template <class Coder>
HeldCoder<Coder> makeCoder() {
    if constexpr (std::is_polymorphic_v<Coder>)
        return std::make_shared<const Coder>();
    else
        return Coder();
}

} // namespace detail

/// A key with a default. A default that was never written is not in the store, and no other reader
/// of the store sees it; see `NSUserDefaults::setDefaultValue`.
template <class Coder_>
class EvaluedUserDefaultsKey : public UserDefaultsKeys {
public:
    /// The coder and the type it codes.
    /// @{
    using Coder = Coder_;
    using CodableType = typename Coder::CodableType;
    /// @}
    /// How the key holds its coder: shared when the coder has virtual operations.
    using HeldCoder = detail::HeldCoder<Coder>;

    /// A name and a default.
    struct NameValue {
        Required<std::string> name;  ///< In the store.
        Required<CodableType> value; ///< The default.
    };
    /// The same with a coder, for one that derives from `Coder`.
    struct NameCoderValue {
        Required<std::string> name;  ///< In the store.
        Required<HeldCoder> coder;   ///< Shared when it has virtual operations.
        Required<CodableType> value; ///< The default.
    };

    /// Stores nothing.
    /// @{
    explicit EvaluedUserDefaultsKey(NameValue argument)
        : name(std::move(argument.name.value)), value(std::move(argument.value.value)),
          coder(detail::makeCoder<Coder>()) {}
    explicit EvaluedUserDefaultsKey(NameCoderValue argument)
        : name(std::move(argument.name.value)), value(std::move(argument.value.value)),
          coder(std::move(argument.coder.value)) {}
    /// @}

    const std::string name; ///< In the store.
    /// What is read when nothing readable is stored.
    const CodableType value;
    const HeldCoder coder; ///< Decides the stored form.
};

/// A key whose value may be absent.
template <class Coder_>
class OptionalUserDefaultsKey : public UserDefaultsKeys {
public:
    /// The coder and the type it codes.
    /// @{
    using Coder = Coder_;
    using CodableType = typename Coder::CodableType;
    /// @}
    /// How the key holds its coder: shared when the coder has virtual operations.
    using HeldCoder = detail::HeldCoder<Coder>;

    /// A name and, if there is one, a default.
    struct NameValue {
        Required<std::string> name;                      ///< In the store.
        std::optional<CodableType> value = std::nullopt; ///< The default.
    };
    /// The same with a coder, for one that derives from `Coder`.
    struct NameCoderValue {
        Required<std::string> name;                 ///< In the store.
        Required<HeldCoder> coder;                  ///< Shared when it has virtual operations.
        Required<std::optional<CodableType>> value; ///< The default.
    };

    /// Stores nothing.
    /// @{
    explicit OptionalUserDefaultsKey(NameValue argument)
        : name(std::move(argument.name.value)), coder(detail::makeCoder<Coder>()),
          value(std::move(argument.value)) {}
    explicit OptionalUserDefaultsKey(NameCoderValue argument)
        : name(std::move(argument.name.value)), coder(std::move(argument.coder.value)),
          value(std::move(argument.value.value)) {}
    /// @}

    const std::string name; ///< In the store.
    const HeldCoder coder;  ///< Decides the stored form.
    /// What is read when nothing readable is stored.
    const std::optional<CodableType> value;
};

namespace detail {

template <class Key>
const typename Key::Coder& coderOf(const Key& key) {
    if constexpr (std::is_polymorphic_v<typename Key::Coder>)
        return *key.coder;
    else
        return key.coder;
}

} // namespace detail

/// A key of either kind.
template <class Key>
concept GenericUserDefaultsKey = std::derived_from<Key, UserDefaultsKeys> &&
    requires(const Key& key) {
    { key.name } -> std::convertible_to<std::string_view>;
    { detail::coderOf(key) } -> std::same_as<const typename Key::Coder&>;
};

} // namespace zorvan
