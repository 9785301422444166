#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>

/// Property lists as bytes and as files.
///
/// Every function here that can fail says why in `*reason`, when one is given: a short lower-case
/// phrase for people. On success `*reason` is left alone.
namespace zorvan::propertylist {

/// How a property list is written.
enum class Format { xml, binary };

/// How deep arrays and dictionaries may stand within each other.
inline constexpr std::size_t maximumDepth = 512;

/// The largest file that is read: 256 MiB.
inline constexpr std::size_t maximumFileSize = std::size_t{256} << 20;

/// Reads either form; which one it is shows in the bytes.
///
/// Safe on any bytes. What is made of them stays in proportion to their number: a binary list may
/// refer to one object from many places, and one that would unfold to more than two objects per
/// byte, or to much more text than there are bytes, is refused, like one that holds itself.
/// An XML list that declares entities or attributes of its own is refused.
///
/// Integers must fit 64 bits, signed or not. Dates beyond the range of `Date` become its nearest
/// end. Of a key that stands twice in a dictionary, the last one counts. A lone surrogate becomes
/// U+FFFD. Null values, sets and object identifiers, which only archives have, are refused.
std::optional<PropertyList> decode(std::span<const std::byte> bytes, std::string* reason = nullptr);

/// Writes a list. The binary form keeps everything except the last digits of a date (it has them as
/// seconds in double precision); XML has whole seconds, rounded down, and keeps everything else.
///
/// Absent when the list is deeper than `maximumDepth`, when a text is not UTF-8, or when a text has
/// a character that XML has no way to write (most of those below space).
std::optional<Data> encode(const PropertyList& list, Format format, std::string* reason = nullptr);

/// Reads a file of either form. Absent when it is no regular file, is too large, cannot be read, or
/// is not a property list.
std::optional<PropertyList> readFile(const std::string& path, std::string* reason = nullptr);

/// Writes a file in one step, in the place of one that is there: after a failure, or a crash in the
/// middle, the old one is still there, whole. The bytes are on the disk when it returns true. An
/// existing file keeps its permissions, a new one gets those of the process's mask; a symbolic link
/// is followed. What is there and no regular file is refused.
bool writeFile(const PropertyList& list, Format format, const std::string& path,
               std::string* reason = nullptr);

} // namespace zorvan::propertylist
