#pragma once

#include <cstdint>

namespace zorvan {

/// What a call of a platform service came to; 0 is success.
using OSStatus = std::int32_t;

/// All is well.
inline constexpr OSStatus errSecSuccess = 0;
/// The disk is full; nothing was changed.
inline constexpr OSStatus errSecDiskFull = -34;
/// Reading or writing the store failed.
inline constexpr OSStatus errSecIO = -36;
/// A value is of the wrong kind, or stands where it makes no sense.
inline constexpr OSStatus errSecParam = -50;
/// Memory ran out.
inline constexpr OSStatus errSecAllocate = -108;
/// There is no store that could be used: it is damaged, it is of a later version, it is locked by
/// another process for too long, or there is no home folder.
inline constexpr OSStatus errSecNotAvailable = -25291;
/// The store, or the file of its key, is not the user's alone.
inline constexpr OSStatus errSecAuthFailed = -25293;
/// There is an item of that class, service, account, access group and synchronisation state.
inline constexpr OSStatus errSecDuplicateItem = -25299;
/// No item matches.
inline constexpr OSStatus errSecItemNotFound = -25300;
/// A value is larger than the store takes.
inline constexpr OSStatus errSecDataTooLarge = -25302;
/// An attribute is not one of generic passwords.
inline constexpr OSStatus errSecNoSuchAttr = -25303;
/// The item is there, but the key that sealed it is not to be had now: its keyring is locked or
/// gone.
inline constexpr OSStatus errSecInteractionNotAllowed = -25308;

} // namespace zorvan
