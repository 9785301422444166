#pragma once

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

    /// Of what is at the path, links not followed. Absent when there is nothing; `errno` says why.
    static std::optional<FileIdentity> at(const std::string& path);
    /// Of what is open. Absent when the system does not say.
    static std::optional<FileIdentity> of(int file);

    /// Whether it is the same file. The number of a device may change with the next start of the
    /// system, so the birth counts more where both have one.
    bool isSameFile(const FileIdentity& other) const noexcept {
        if (inode != other.inode)
            return false;
        return birth != 0 && other.birth != 0 ? birth == other.birth : device == other.device;
    }

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
};

} // namespace zorvan::internal
