#pragma once

#include <zorvan/platform/foundation/internal/NewFile.h>
#include <zorvan/platform/foundation/internal/Scratch.h>

#include <optional>
#include <string>
#include <sys/stat.h>

namespace zorvan::files {

enum class Durability {
    none,
    /// What was copied is on the disk when the call returns.
    onDisk,
};

/// Copies a file, a link, a pipe, or a folder with all it holds, to where nothing is yet.
///
/// A link is copied as a link. Modes, dates, extended attributes and access lists go along where
/// the place keeps them; holes stay holes. The copy is the user's own: set-user and set-group bits
/// stay behind with an owner who is another. While a file or folder is being filled, no one else
/// may open it. The depth of a folder is bounded by memory alone.
///
/// Throws `std::filesystem::filesystem_error`; a part of the copy may be at `to` then.
void copyItem(const std::string& from, const std::string& to, Durability durability);

/// A copy that has no place yet; gone with this object unless it got one.
class UnplacedCopy {
public:
    /// In the folder of a scratch name (`internal::Scratch`), which the copy has unless it can do
    /// without. Throws as `copyItem` does.
    UnplacedCopy(const std::string& item, const std::string& scratchName, Durability durability);

    /// The same of a copy.
    UnplacedCopy(const UnplacedCopy& copy, const std::string& scratchName, Durability durability);

    /// Gives it a name that nothing has, or puts it in the place of an item, as `NewFile` does.
    int place(const std::string& path);
    int replace(const std::string& path);

private:
    void makeFile(int source, const struct stat& status, const std::string& scratchName,
                  Durability durability);
    void makeItem(const std::string& item, const std::string& scratchName, Durability durability);

    std::optional<internal::NewFile> file_;    // when it is a file
    std::optional<internal::Scratch> scratch_; // when it is anything else
};

/// Copies what a regular file holds to an empty one: by sharing its blocks where the file system
/// can, else within the kernel, else through memory. Holes stay holes. A file that changes
/// meanwhile is copied up to the size it had. With `startsWriting` the disk begins to write at
/// once, so that a wait for it is shorter. Returns 0 or the error number.
int copyContents(int from, const struct stat& status, int to, bool startsWriting);

/// Waits until all that was written to the volume of an item is on the disk. Throws
/// `std::filesystem::filesystem_error`.
void synchroniseVolumeOf(const std::string& path);

/// Throws the `std::filesystem::filesystem_error` of an error number.
[[noreturn]] void throwFileError(const char* what, const std::string& path, int error);

} // namespace zorvan::files
