#pragma once

#include <zorvan/files/internal/CopyItem.h>
#include <zorvan/platform/foundation/URL.h>
#include <zorvan/platform/foundation/internal/hasNUL.h>

#include <cerrno>
#include <string>
#include <sys/stat.h>

namespace zorvan::files {

/// The path of a file URL. Throws `std::filesystem::filesystem_error` for another URL, and for a
/// path with a NUL, at which the system would cut it.
inline const std::string& filePath(const URL& url) {
    if (!url.isFileURL())
        throwFileError("not a file", url.absoluteString(), EINVAL);
    if (internal::hasNUL(url.path()))
        throwFileError("no path of a file", url.absoluteString(), EINVAL);
    return url.path();
}
const std::string& filePath(URL&&) = delete;

/// Whether an item, and be it a link that leads nowhere, has the name.
inline bool isTaken(const std::string& path) {
    struct stat status {};
    return ::lstat(internal::systemPath(path), &status) == 0;
}

/// Makes a folder that is the user's alone, and those on the way to it that are missing. Returns 0
/// or the error number.
int makePrivateFolder(const std::string& path);

} // namespace zorvan::files
