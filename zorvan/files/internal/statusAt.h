#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/openByPath.h>

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace zorvan::files {

/// What `fstatat` knows of a path, which may be longer than the kernel takes at once.
inline std::optional<struct stat> statusAt(const std::string& path, int flags) {
    struct stat status {};
    if (::fstatat(AT_FDCWD, path.c_str(), &status, flags) == 0)
        return status;
    if (errno != ENAMETOOLONG)
        return std::nullopt;
    const int follow = flags & AT_SYMLINK_NOFOLLOW ? O_NOFOLLOW : 0;
    const internal::FileDescriptor item(
        internal::openByPath(AT_FDCWD, path, O_PATH | O_CLOEXEC | follow));
    return ::fstat(item.get(), &status) == 0 ? std::optional(status) : std::nullopt;
}

} // namespace zorvan::files
