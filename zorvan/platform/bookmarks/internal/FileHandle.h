#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <cstdint>
#include <string>

namespace zorvan::internal {

/// What the system finds a file by without a path.
struct FileHandle {
    std::int32_t type = 0;
    Data bytes; // empty where the volume has none

    static FileHandle of(const std::string& path);

    /// The path that the file has now; empty when it is gone or this process may not ask.
    /// `neighbour` is any path on the same volume.
    std::string currentPath(const std::string& neighbour) const;

    /// False only when both are known to belong to different files.
    bool mayBeOf(const FileHandle& other) const noexcept {
        return bytes.empty() || other.bytes.empty() || (type == other.type && bytes == other.bytes);
    }
};

} // namespace zorvan::internal
