#pragma once

#include <zorvan/platform/foundation/Data.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zorvan::internal {

/// What tells a file from every other, whatever its name is.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    /// When the file was made, in nanoseconds since 1970; 0 where the volume does not say. A number
    /// is used again after its file is gone, but not with the same birth.
    std::int64_t birth = 0;

    /// Of what is at the path, links not followed. Absent when there is nothing.
    static std::optional<FileIdentity> at(const std::string& path);

    /// Whether it is the same file. The number of a device may change with the next start of the
    /// system, so the birth counts more where both have one.
    bool isSameFile(const FileIdentity& other) const noexcept {
        if (inode != other.inode)
            return false;
        return birth != 0 && other.birth != 0 ? birth == other.birth : device == other.device;
    }

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

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
