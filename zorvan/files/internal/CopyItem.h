#pragma once

#include <string>

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
/// may open it.
///
/// Throws `std::filesystem::filesystem_error`; a part of the copy may be at `to` then.
void copyItem(const std::string& from, const std::string& to, Durability durability);

/// Waits until all that was written to the volume of an item is on the disk. Throws
/// `std::filesystem::filesystem_error`.
void synchroniseVolumeOf(const std::string& path);

/// Removes an item with all it holds, what folders that may not be written hold included. What
/// cannot be removed stays.
void removeItem(const std::string& path) noexcept;

/// A place for an item on its way to another name; whatever is there in the end is removed.
class Scratch {
public:
    explicit Scratch(std::string path) : path_(std::move(path)) {}

    /// A hidden name that nothing has, in the folder of an item.
    static Scratch beside(const std::string& item);

    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() { removeItem(path_); }

    const std::string& path() const noexcept { return path_; }

private:
    std::string path_;
};

/// The folder that holds the item of an absolute path.
std::string folderOf(const std::string& path);

/// Throws the `std::filesystem::filesystem_error` of an error number.
[[noreturn]] void throwFileError(const char* what, const std::string& path, int error);

} // namespace zorvan::files
