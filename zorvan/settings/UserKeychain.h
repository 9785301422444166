#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/NSNumber.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/Required.h>
#include <zorvan/platform/propertylist/NSKeyedArchiver.h>
#include <zorvan/platform/propertylist/NSKeyedUnarchiver.h>
#include <zorvan/platform/security/SecItem.h>

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
        struct RawValue {
            Required<std::string> rawValue;
        };
        template <std::convertible_to<std::string_view> Text>
        explicit Key(const Text& text) : rawValue(std::string_view(text)) {}
        explicit Key(RawValue argument) : rawValue(std::move(argument.rawValue.value)) {}

        std::string rawValue;

        friend bool operator==(const Key&, const Key&) = default;
    };

    /// When an item may be read. Works in a `switch`, and its constants have the members.
    class Access {
    public:
        enum class Case : std::uint8_t {
            afterFirstUnlock,
            afterFirstUnlockThisDeviceOnly,
            always,
            whenPasscodeSetThisDeviceOnly,
            alwaysThisDeviceOnly,
            whenUnlocked,
            whenUnlockedThisDeviceOnly
        };
        static const Access afterFirstUnlock, afterFirstUnlockThisDeviceOnly, always;
        static const Access whenPasscodeSetThisDeviceOnly, alwaysThisDeviceOnly, whenUnlocked;
        static const Access whenUnlockedThisDeviceOnly;
        /// The five cases that have a constant, in order.
        static const std::array<Access, 5> all;

        constexpr Access(Case value) noexcept : case_(value) {}
        constexpr operator Case() const noexcept { return case_; }

        /// The case whose constant that is; absent when there is none.
        [[nodiscard]] static std::optional<Access> make(std::string_view attributeValue);
        /// The constant of each case that has one.
        [[nodiscard]] static const std::unordered_map<Access, std::string>& lookup();
        /// The constant, `kSecAttrAccessibleWhenUnlocked` and so on; absent for `always` and
        /// `alwaysThisDeviceOnly`, which as the access of an operation count as none.
        [[nodiscard]] std::optional<std::string> attributeValue() const;

        friend constexpr bool operator==(Access a, Access b) noexcept { return a.case_ == b.case_; }

    private:
        Case case_;
    };

    struct Service {
        Required<std::string> serviceName;
        std::optional<std::string> accessGroup = {};
    };
    [[nodiscard]] static std::shared_ptr<UserKeychain> create(Service argument);

    /// Of the main bundle: its identifier is the service, "QuenlowKeychain" when it has none.
    [[nodiscard]] static const std::shared_ptr<UserKeychain>& standard();

    const std::string& serviceName() const noexcept { return serviceName_; }
    const std::optional<std::string>& accessGroup() const noexcept { return accessGroup_; }

    /// Whether items that are written are synchronizable; false at first.
    bool enableSynchronization() const noexcept { return enableSynchronization_; }
    void setEnableSynchronization(bool value) noexcept { enableSynchronization_ = value; }

    /// Each writes a value, and gives whether it is stored: on the disk, sealed.
    bool set(const Data& bytes, const Key& key, std::optional<Access> access = {}) const;
    /// False when the text is not UTF-8.
    bool set(std::string_view text, const Key& key, std::optional<Access> access = {}) const;
    bool set(const std::string& text, const Key& key, std::optional<Access> access = {}) const {
        return set(std::string_view(text), key, access);
    }
    bool set(const char* text, const Key& key, std::optional<Access> access = {}) const {
        return set(std::string_view(text), key, access);
    }
    /// A number or truth value, archived as an `NSNumber`, or an object: whatever `NSKeyedArchiver`
    /// takes. False when it cannot be archived.
    template <class Object>
    bool set(const Object& object, const Key& key, std::optional<Access> access = {}) const {
        return setArchive([&] { return NSKeyedArchiver::archivedData(object); }, key, access);
    }

    /// Each reads a value; absent when there is no item, when it cannot be read now, or when it is
    /// none of that kind. What comes out is the caller's to `wipe`.
    std::optional<Data> data(const Key& key, std::optional<Access> access = {}) const;
    /// A name of the item for other processes, under `kSecValuePersistentRef`.
    std::optional<Data> dataRef(const Key& key, std::optional<Access> access = {}) const;
    std::optional<std::string> string(const Key& key, std::optional<Access> access = {}) const;
    /// Of any number, as `NSNumber` converts it.
    std::optional<std::int64_t> integer(const Key& key, std::optional<Access> access = {}) const;
    std::optional<float> float_(const Key& key, std::optional<Access> access = {}) const;
    std::optional<double> double_(const Key& key, std::optional<Access> access = {}) const;
    std::optional<bool> bool_(const Key& key, std::optional<Access> access = {}) const;
    /// What `NSKeyedUnarchiver` gives for the class.
    template <class Object>
    std::optional<Object> object(const Key& key, std::optional<Access> access = {}) const {
        std::optional<Object> result;
        readArchive(key, access, [&](const Data& archive) {
            result.emplace(NSKeyedUnarchiver::unarchivedObject<Object>(archive));
        });
        return result;
    }

    bool hasValue(const Key& key, std::optional<Access> access = {}) const;

    /// False when there was no item.
    bool remove(const Key& key, std::optional<Access> access = {}) const;
    /// Removes every item of the service, and of the access group when there is one. False when
    /// there was none.
    bool removeAllKeys() const;

private:
    explicit UserKeychain(Service argument);

    std::optional<NSNumber> number(const Key& key, std::optional<Access> access) const;
    /// Writes bytes of which nobody else needs a copy: they are wiped.
    bool setAndWipe(Data bytes, const Key& key, std::optional<Access> access) const;

    template <class Archive>
    bool setArchive(Archive archive, const Key& key, std::optional<Access> access) const {
        Data bytes;
        try {
            bytes = archive();
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception&) {
            return false;
        }
        return setAndWipe(std::move(bytes), key, access);
    }
    /// Nothing happens when there is no archive, or when reading it fails.
    void readArchive(const Key& key, std::optional<Access> access,
                     const std::function<void(const Data&)>& reader) const;

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
