#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <system_error>

namespace zorvan::internal {

/// Writes a file in one step, in the place of one that is there or where nothing is.
///
/// - Whatever happens, and be it the end of the process or a power failure, the name has the old
///   bytes or the new ones, all of them. The call returns when the new ones, and the name, are on
///   the disk.
/// - A link stays a link: what it leads to is written. Other names that the old file has (hard
///   links) keep the old bytes.
/// - The mode, the access list and as far as allowed the owner of an old file stay. A new one gets
///   what the process and the folder give.
/// - What is there and no regular file is refused: a folder (EISDIR), a pipe, socket or device
///   (EINVAL). So is a path with a NUL (EINVAL).
/// - A process that is killed leaves nothing behind that the next call in that folder does not
///   remove (`Scratch`).
std::error_code writeFile(const std::string& path, std::span<const std::byte> bytes);

} // namespace zorvan::internal
