#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// Bookmarks: bytes that find a file again after it was renamed or moved within its volume.
namespace zorvan {

/// A set of bits.
using NSURLBookmarkCreationOptions = std::uint64_t;
/// Made for files that an application keeps the right to use. Here the right is the user's own, and
/// the option changes nothing.
inline constexpr NSURLBookmarkCreationOptions NSURLBookmarkCreationWithSecurityScope = 2048;

/// A set of bits.
using NSURLBookmarkResolutionOptions = std::uint64_t;
/// As for creation: the option changes nothing.
inline constexpr NSURLBookmarkResolutionOptions NSURLBookmarkResolutionWithSecurityScope = 1024;

/// The file that a bookmark leads to.
struct ResolvedBookmark {
    URL url; ///< Where it is now.
    /// The bookmark still leads to the file, but a new one should be made: the file has another
    /// path, or another file has taken its place.
    bool isStale = false;
};

/// The bookmark of an existing file or folder; a symbolic link is bookmarked itself. Absent when
/// the URL is no file's or the file cannot be seen; `*problem` then is one line for people.
std::optional<Data> bookmarkData(const URL& url, NSURLBookmarkCreationOptions options,
                                 std::string* problem = nullptr);

/// Finds the file of a bookmark. In this order:
///
/// 1. at its path, when the file there is the same one;
/// 2. by its handle, where the system lets the process open files by it (that is root's right);
/// 3. by its number, in the folder where it was, then in what is below each of the folders around
///    that one, within the volume: up to 200,000 names are looked at, none of them opened;
/// 4. at its path, when another file stands there now, as after a save that replaced it.
///
/// Absent when none of it leads to a file, and when the bytes are no bookmark; `*problem` then is
/// one line for people. Safe on any bytes.
std::optional<ResolvedBookmark> resolveBookmark(std::span<const std::byte> bookmark,
                                                NSURLBookmarkResolutionOptions options,
                                                std::string* problem = nullptr);

} // namespace zorvan
