#pragma once

#include <zorvan/platform/bookmarks/internal/FileHandle.h>
#include <zorvan/platform/foundation/internal/FileIdentity.h>

#include <optional>
#include <span>
#include <string>

namespace zorvan::internal {

/// What a bookmark holds. Its bytes: "zbmk", the version 1 as one byte; then, numbers from the
/// lowest byte up, device, inode and birth in 8 bytes each, the type of the handle in 4, the length
/// of the handle in 2 and the handle, the length of the path in 4 and the path. What follows is of
/// later versions, and is passed over.
struct BookmarkRecord {
    FileIdentity identity;
    FileHandle handle;
    std::string path;

    Data encoded() const;
    /// Absent when the bytes are no bookmark, or one whose path is not absolute or holds a NUL.
    static std::optional<BookmarkRecord> decoded(std::span<const std::byte> bytes);
};

} // namespace zorvan::internal
