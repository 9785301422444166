#pragma once

#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/security/SecBase.h>

#include <cstddef>
#include <optional>

namespace zorvan {

/// The class of an item, a text: required, except where a persistent reference names the item.
/// Generic passwords are the only one.
/// @{
inline constexpr const char* kSecClass = "class";
inline constexpr const char* kSecClassGenericPassword = "genericPassword";
/// @}

/// Texts. Service, account and access group are empty unless given; together with the
/// synchronisation state they identify an item.
/// @{
inline constexpr const char* kSecAttrService = "service";
inline constexpr const char* kSecAttrAccount = "account";
inline constexpr const char* kSecAttrAccessGroup = "accessGroup";
inline constexpr const char* kSecAttrLabel = "label";
/// @}
/// Bytes, or a text, which stands for its bytes; comes back as bytes.
inline constexpr const char* kSecAttrGeneric = "generic";

/// When the item may be read: one of the five constants below, the first of which new items have
/// unless told otherwise. It is kept and matched; what guards the items is the key that seals them.
inline constexpr const char* kSecAttrAccessible = "accessible";
/// A value of `kSecAttrAccessible`.
/// @{
inline constexpr const char* kSecAttrAccessibleWhenUnlocked = "whenUnlocked";
inline constexpr const char* kSecAttrAccessibleAfterFirstUnlock = "afterFirstUnlock";
inline constexpr const char* kSecAttrAccessibleWhenUnlockedThisDeviceOnly =
    "whenUnlockedThisDeviceOnly";
inline constexpr const char* kSecAttrAccessibleAfterFirstUnlockThisDeviceOnly =
    "afterFirstUnlockThisDeviceOnly";
inline constexpr const char* kSecAttrAccessibleWhenPasscodeSetThisDeviceOnly =
    "whenPasscodeSetThisDeviceOnly";
/// @}

/// A truth value, or `kSecAttrSynchronizableAny`. New items are not synchronizable unless told
/// otherwise. Kept and matched; nothing leaves this computer.
inline constexpr const char* kSecAttrSynchronizable = "synchronizable";
/// In a query: either state. In an item to be added: not synchronizable, and a duplicate of an item
/// of either state.
inline constexpr const char* kSecAttrSynchronizableAny = "any";

/// Dates, which the store keeps.
/// @{
inline constexpr const char* kSecAttrCreationDate = "creationDate";
inline constexpr const char* kSecAttrModificationDate = "modificationDate";
/// @}

/// The secret: bytes, up to `maximumSecretSize`.
inline constexpr const char* kSecValueData = "valueData";
/// The most bytes a secret may have: 16 MiB.
inline constexpr std::size_t maximumSecretSize = std::size_t{16} << 20;
/// Bytes that name one item for as long as it is there, in every process of the user. Never used
/// again for another.
inline constexpr const char* kSecValuePersistentRef = "valuePersistentRef";

/// How many results: a number from 1, or one of the constants. One unless told otherwise.
inline constexpr const char* kSecMatchLimit = "matchLimit";
/// A value of `kSecMatchLimit`.
/// @{
inline constexpr const char* kSecMatchLimitOne = "one";
inline constexpr const char* kSecMatchLimitAll = "all";
/// @}

/// What a result is. With one of them true, that: bytes for the data and the persistent reference,
/// a dictionary for the attributes. With several, a dictionary of attributes in which they have the
/// keys `kSecValueData` and `kSecValuePersistentRef`.
/// @{
inline constexpr const char* kSecReturnData = "returnData";
inline constexpr const char* kSecReturnAttributes = "returnAttributes";
inline constexpr const char* kSecReturnPersistentRef = "returnPersistentRef";
/// @}

/// The user's secure items: generic passwords, whose values are sealed with a key that the
/// session's keyring or a private file keeps. They are in "zorvan/secure-items" below
/// `$XDG_DATA_HOME`, the same for every application. The guide page on secrets has what is
/// protected, and what is not.
///
/// An item matches a query when each attribute that the query names is equal, byte by byte;
/// attributes that it leaves out may be anything. An item whose attributes or value were changed
/// behind the store's back is not found by any reading.
///
/// Statuses that every call may give beside its own: `errSecParam` and `errSecNoSuchAttr` for what
/// cannot be asked, `errSecNotAvailable`, `errSecAuthFailed`, `errSecIO`, `errSecAllocate`. A call
/// waits for other processes for up to five seconds, and for a keyring for up to two; it never asks
/// the user anything. Safe from several threads, and with several processes.

/// Adds an item: attributes, and its value, which is empty unless given. On disk when it returns
/// success. `errSecDuplicateItem`, `errSecDataTooLarge`, `errSecDiskFull`.
OSStatus SecItemAdd(const PropertyList::Dictionary& attributes);

/// Changes the given attributes of every item that matches; all of them or, on failure, none. A new
/// value is sealed with the key that new items get. `errSecItemNotFound`; `errSecDuplicateItem`
/// when an item would become one; `errSecInteractionNotAllowed` when attributes without a value are
/// to be changed while the key is not to be had.
OSStatus SecItemUpdate(const PropertyList::Dictionary& query,
                       const PropertyList::Dictionary& attributesToUpdate);

/// What a search gives.
struct SecItemResult {
    OSStatus status; ///< Success, or why there is no result.
    /// One result, or with another limit than one an array of them. Absent unless the status is
    /// success, and when the query asks for nothing to be returned.
    std::optional<PropertyList> value;
};

/// Finds items. Of an item that is there in both synchronisation states, the one that was written
/// last comes first. `errSecItemNotFound`; `errSecInteractionNotAllowed` when all that match are
/// sealed with a key that is not to be had.
SecItemResult SecItemCopyMatching(const PropertyList::Dictionary& query);

/// Removes every item that matches, damaged ones included; needs no key. `errSecItemNotFound`.
OSStatus SecItemDelete(const PropertyList::Dictionary& query);

} // namespace zorvan
