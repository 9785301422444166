#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/NSNumber.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/Required.h>
#include <zorvan/platform/propertylist/NSKeyedArchiver.h>
#include <zorvan/platform/propertylist/NSKeyedUnarchiver.h>
#include <zorvan/platform/security/SecItem.h>
#include <zorvan/platform/security/wipe.h>

#include <array>
#include <atomic>
#include <concepts>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>

namespace zorvan {

/// Small secrets of an application - passwords, tokens, flags, archived objects - as
/// generic-password items in the user's secure item store (`SecItem.h`).
///
/// Every failure shows as false or an absent result; nothing is thrown but `std::bad_alloc`,
/// nothing is logged. Writing adds an item, or changes the data of the one that is there, which
/// keeps its accessibility and synchronisation state. Reading finds an item in either
/// synchronisation state.
///
/// With an access, only an item of that accessibility is meant; a new item gets it. Without one any
/// is meant, and a new item is `whenUnlocked`.
///
/// May be used from several threads. Adding and changing are two steps: of two writers at once,
/// each succeeds and the later data stays.
class UserKeychain {
public:
    /// What an item is addressed by: its label, generic attribute and account.
    struct Key {
        /// A name.
        struct RawValue {
            Required<std::string> rawValue;
        };
        /// Any text; it is the label, the generic attribute and the account in one.
        /// @{
        template <std::convertible_to<std::string_view> Text>
        explicit Key(const Text& text) : rawValue(std::string_view(text)) {}
        explicit Key(RawValue argument) : rawValue(std::move(argument.rawValue.value)) {}
        /// @}

        std::string rawValue; ///< As it was given.

        friend bool operator==(const Key&, const Key&) = default;
    };

    /// When an item may be read: kept with it and matched, but not enforced on this computer. Works
    /// in a `switch`, and its constants have the members.
    class Access {
    public:
        /// The cases, for `switch`.
        enum class Case : std::uint8_t {
            afterFirstUnlock,
            afterFirstUnlockThisDeviceOnly,
            always,
            whenPasscodeSetThisDeviceOnly,
            alwaysThisDeviceOnly,
            whenUnlocked,
            whenUnlockedThisDeviceOnly
        };
        /// The case of that name.
        /// @{
        static const Access afterFirstUnlock, afterFirstUnlockThisDeviceOnly, always;
        static const Access whenPasscodeSetThisDeviceOnly, alwaysThisDeviceOnly, whenUnlocked;
        static const Access whenUnlockedThisDeviceOnly;
        /// @}
        /// The five cases that have a constant, in order.
        static const std::array<Access, 5> all;

        /// A case and its value stand for each other.
        /// @{
        constexpr Access(Case value) noexcept : case_(value) {}
        constexpr operator Case() const noexcept { return case_; }
        /// @}

        /// The case whose constant that is; absent when there is none.
        [[nodiscard]] static std::optional<Access> make(std::string_view attributeValue);
        /// The constant of each case that has one.
        [[nodiscard]] static const std::unordered_map<Access, std::string>& lookup();
        /// The constant, `kSecAttrAccessibleWhenUnlocked` and so on; absent for `always` and
        /// `alwaysThisDeviceOnly`, which as the access of an operation count as none.
        [[nodiscard]] std::optional<std::string> attributeValue() const;

        /// Of the same case.
        friend constexpr bool operator==(Access a, Access b) noexcept { return a.case_ == b.case_; }

    private:
        Case case_;
    };

    /// Where items belong.
    struct Service {
        Required<std::string> serviceName; ///< The service attribute of every item.
        /// The access group of every item; without one, items of every group are found.
        std::optional<std::string> accessGroup = {};
    };
    /// Of a service of your own; makes no file.
    [[nodiscard]] static std::shared_ptr<UserKeychain> create(Service argument);

    /// Of the main bundle: its identifier is the service. Lives until the process ends.
    ///
    /// All programs without an identifier share one service, "QuenlowKeychain": they read,
    /// overwrite and, by `removeAllKeys`, remove each other's items.
    [[nodiscard]] static const std::shared_ptr<UserKeychain>& standard();
    /// For a program without an identifier that shares its items with no other: the file name of
    /// the running executable is the service. Where the system does not tell it, as `standard`.
    [[nodiscard]] static std::shared_ptr<UserKeychain> createForProgram();
    /// As they were given.
    /// @{
    std::string serviceName() const { return serviceName_; }
    std::optional<std::string> accessGroup() const { return accessGroup_; }
    /// @}

    /// Whether items that are written are synchronizable; false at first.
    bool enableSynchronization() const noexcept { return enableSynchronization_; }
    /// Of items written from now on; others keep what they have.
    void setEnableSynchronization(bool value) noexcept { enableSynchronization_ = value; }

    /// Each writes a value, and gives whether it is stored: on the disk, sealed.
    bool set(const Data& bytes, const Key& key, std::optional<Access> access = {}) const;
    /// False when the text is not UTF-8.
    bool set(std::string_view text, const Key& key, std::optional<Access> access = {}) const;
    /// A number or truth value, archived as an `NSNumber`, or an object: whatever `NSKeyedArchiver`
    /// takes, but texts in any form, which are not archived. False when it cannot be archived.
    template <class Object>
    requires(!std::convertible_to<const Object&, std::string_view>) bool set(
        const Object& object, const Key& key, std::optional<Access> access = {}) const {
        std::optional<Data> bytes = encoded(object);
        return bytes && setAndWipe(std::move(*bytes), key, access);
    }

    /// Each reads a value; absent when there is no item, when it cannot be read now, or when it is
    /// none of that kind. What comes out is the caller's to `wipe`.
    std::optional<Data> data(const Key& key, std::optional<Access> access = {}) const;
    /// A name of the item for other processes, under `kSecValuePersistentRef`.
    std::optional<Data> dataRef(const Key& key, std::optional<Access> access = {}) const;
    /// As UTF-8; absent when it is not.
    std::optional<std::string> string(const Key& key, std::optional<Access> access = {}) const;
    /// Of any number, as `NSNumber` converts it.
    std::optional<std::int64_t> integer(const Key& key, std::optional<Access> access = {}) const {
        return number<std::int64_t>(key, access);
    }
    /// Of any number, as `NSNumber` converts it.
    /// @{
    std::optional<float> float_(const Key& key, std::optional<Access> access = {}) const {
        return number<float>(key, access);
    }
    std::optional<double> double_(const Key& key, std::optional<Access> access = {}) const {
        return number<double>(key, access);
    }
    std::optional<bool> bool_(const Key& key, std::optional<Access> access = {}) const {
        return number<bool>(key, access);
    }
    /// @}
    /// What `NSKeyedUnarchiver` gives for the class.
    template <class Object>
    std::optional<Object> object(const Key& key, std::optional<Access> access = {}) const {
        std::optional<Data> archive = data(key, access);
        const detail::WipedAtEnd afterwards(archive);
        return archive ? unarchived<Object>(*archive) : std::nullopt;
    }

    /// Whether `data` would give something.
    bool hasValue(const Key& key, std::optional<Access> access = {}) const;

    /// Reads a value of that kind - `Data`, a text, a number or truth value, an object - as `data`,
    /// `string` and so on do, has the function change it, which may make it absent, and writes or
    /// removes it, all in one transaction: whatever other threads and processes write, nothing of
    /// it is lost.
    ///
    /// What is there but is of another kind counts as absent. True when the change is stored, also
    /// when there was nothing to change; else nothing was changed. What the function throws is
    /// thrown, and nothing is changed. The function is called at most once, and others wait for it,
    /// so it should be quick; it may use secrets, and what it writes is part of the transaction.
    ///
    /// ```cpp
    /// keychain->modify<std::int64_t>(uses, [](auto& count) { count = count.value_or(0) + 1; });
    /// ```
    template <class Value, std::invocable<std::optional<Value>&> Change>
    bool modify(const Key& key, Change&& change, std::optional<Access> access = {}) const {
        return modifyData(
            key,
            [&](std::optional<Data>& bytes) {
                std::optional<Value> value = bytes ? decoded<Value>(*bytes) : std::nullopt;
                const detail::WipedAtEnd afterwards(value);
                change(value);
                std::optional<Data> old = std::move(bytes);
                const detail::WipedAtEnd oldAfterwards(old);
                bytes = value ? encoded(*value) : std::nullopt;
                return !value || bytes;
            },
            access);
    }

    /// False when there was no item.
    bool remove(const Key& key, std::optional<Access> access = {}) const;
    /// Removes every item of the service, and of the access group when there is one: also those of
    /// other programs that use the same service, as all without an identifier do through
    /// `standard`. False when there was none.
    bool removeAllKeys() const;

private:
    explicit UserKeychain(Service argument);

    using ChangeData = std::function<bool(std::optional<Data>& bytes)>;

    /// The function says whether the value that it left is to be stored.
    bool modifyData(const Key& key, const ChangeData& change, std::optional<Access> access) const;
    /// Writes bytes of which nobody else needs a copy: they are wiped.
    bool setAndWipe(Data bytes, const Key& key, std::optional<Access> access) const;

    /// The bytes of a text; absent when it is not UTF-8.
    static std::optional<Data> bytesOf(std::string_view text);
    static std::optional<std::string> textIn(const Data& bytes);
    /// Absent when it throws anything but a lack of memory.
    template <class Function>
    static auto orAbsent(Function function) -> std::optional<decltype(function())> {
        try {
            return function();
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }
    template <class Object>
    static std::optional<Object> unarchived(const Data& archive) {
        return orAbsent([&] { return NSKeyedUnarchiver::unarchivedObject<Object>(archive); });
    }

    /// The bytes that stand for a value; absent when there are none.
    template <class Value>
    static std::optional<Data> encoded(const Value& value) {
        if constexpr (std::same_as<Value, Data>)
            return value;
        else if constexpr (std::same_as<Value, std::string>)
            return bytesOf(value);
        else
            return orAbsent([&] { return NSKeyedArchiver::archivedData(value); });
    }
    template <class Value>
    static std::optional<Value> decoded(const Data& bytes) {
        if constexpr (std::same_as<Value, Data>)
            return bytes;
        else if constexpr (std::same_as<Value, std::string>)
            return textIn(bytes);
        else if constexpr (std::is_arithmetic_v<Value>)
            return numberAs<Value>(unarchived<NSNumber>(bytes));
        else
            return unarchived<Value>(bytes);
    }
    template <class Number>
    std::optional<Number> number(const Key& key, std::optional<Access> access) const {
        return numberAs<Number>(object<NSNumber>(key, access));
    }
    template <class Number>
    static std::optional<Number> numberAs(const std::optional<NSNumber>& number) {
        static_assert(std::same_as<Number, bool> || std::same_as<Number, std::int64_t> ||
                          std::floating_point<Number>,
                      "numbers are std::int64_t, float, double or bool");
        if (!number)
            return std::nullopt;
        if constexpr (std::same_as<Number, bool>)
            return number->boolValue();
        else if constexpr (std::same_as<Number, std::int64_t>)
            return number->int64Value();
        else if constexpr (std::same_as<Number, float>)
            return number->floatValue();
        else
            return number->doubleValue();
    }

    std::string serviceName_;
    std::optional<std::string> accessGroup_;
    std::atomic<bool> enableSynchronization_ = false;
};

inline constexpr UserKeychain::Access UserKeychain::Access::afterFirstUnlock =
    Case::afterFirstUnlock;
inline constexpr UserKeychain::Access UserKeychain::Access::afterFirstUnlockThisDeviceOnly =
    Case::afterFirstUnlockThisDeviceOnly;
inline constexpr UserKeychain::Access UserKeychain::Access::always = Case::always;
inline constexpr UserKeychain::Access UserKeychain::Access::whenPasscodeSetThisDeviceOnly =
    Case::whenPasscodeSetThisDeviceOnly;
inline constexpr UserKeychain::Access UserKeychain::Access::alwaysThisDeviceOnly =
    Case::alwaysThisDeviceOnly;
inline constexpr UserKeychain::Access UserKeychain::Access::whenUnlocked = Case::whenUnlocked;
inline constexpr UserKeychain::Access UserKeychain::Access::whenUnlockedThisDeviceOnly =
    Case::whenUnlockedThisDeviceOnly;
inline constexpr std::array<UserKeychain::Access, 5> UserKeychain::Access::all = {
    afterFirstUnlock, afterFirstUnlockThisDeviceOnly, whenPasscodeSetThisDeviceOnly, whenUnlocked,
    whenUnlockedThisDeviceOnly};

} // namespace zorvan

template <>
struct std::hash<zorvan::UserKeychain::Key> {
    std::size_t operator()(const zorvan::UserKeychain::Key& key) const noexcept {
        return std::hash<std::string>()(key.rawValue);
    }
};

template <>
struct std::hash<zorvan::UserKeychain::Access> {
    std::size_t operator()(zorvan::UserKeychain::Access access) const noexcept {
        return static_cast<std::size_t>(static_cast<zorvan::UserKeychain::Access::Case>(access));
    }
};
