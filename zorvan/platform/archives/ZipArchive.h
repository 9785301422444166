#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <optional>
#include <string>

namespace zorvan {

/// The zip archive of all that a folder holds: files, sub-folders, empty ones included, and links,
/// as links. Each entry has its mode and date of change, and the path below the folder as its
/// name; entries are in the order of the bytes of their names.
///
/// Names are UTF-8, and marked as such; a byte that is no part of such text is written as "%" and
/// two hexadecimal digits. Pipes, sockets and devices are left out. Files, and the archive, may be
/// larger than 4 GiB; no file is held in memory.
///
/// Absent when something cannot be read, or when memory does not suffice for the archive. No link
/// is followed, and be it one that takes the place of a folder meanwhile.
std::optional<Data> zipArchiveOfFolder(const std::string& path);

} // namespace zorvan
