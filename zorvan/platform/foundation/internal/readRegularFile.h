#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace zorvan::internal {

/// The bytes of a file. Absent for what is no regular file, which is not waited for, and for a path
/// with a NUL, for one of more bytes than that, and for one that cannot be read; `errno` says why:
/// EINVAL, EFBIG, or what the system has.
std::optional<std::string> readRegularFile(const std::string& path, std::size_t most);

} // namespace zorvan::internal
