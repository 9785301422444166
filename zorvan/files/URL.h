#pragma once

#include <zorvan/files/UTIType.h>
#include <zorvan/platform/foundation/URL.h>

#include <functional>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace zorvan {

/// The last path component without its extension: "b" of "/a/b.txt".
std::string lastPathTitle(const URL& url);

/// With the extension deleted and the new one appended, unless that is empty.
URL replacingPathExtension(const URL& url, std::string_view extension);

/// Whether the path components of `url` begin those of `other`; equal URLs count. Text only, the
/// file system is not asked.
[[nodiscard]] bool isParent(const URL& url, const URL& other);

/// Whether the path of `url` begins the path of `other` as plain text: "/a/b" counts as a parent of
/// "/a/bc".
[[nodiscard]] bool isFileParent(const URL& url, const URL& other) noexcept;

/// The URL itself when it has no path extension, else the URL without its last component.
URL parentOrSelf(const URL& url);

/// What the file system knows of an item itself, not of what it may point to.
struct URLResourceValues {
    /// True for a link whether it leads anywhere or not.
    bool isSymbolicLink = false;
    /// True for a symbolic link as well: there is no other kind of alias here.
    bool isAliasFile = false;
};

/// Absent when nothing is there, or it may not be asked.
std::optional<URLResourceValues> resourceValues(const URL& url);

/// Whether the item is a symbolic link or alias. Absent when that cannot be found out.
std::optional<bool> checkIsAlias(const URL& url);

/// Whether the item (what it points to, for a link) is on the volume mounted at "/". Absent when
/// that cannot be found out.
std::optional<bool> checkIsOnMainDisk(const URL& url);

/// The type that the path extension stands for; absent when there is none.
std::optional<UTIType> utiType(const URL& url);

/// The types of which `conforms` asks for one.
struct ConformsToOneOf {
    std::vector<UTIType> toOneOf;
};

/// Whether the type of the path extension conforms to the given one, or to one of the given ones.
/// False when the extension has no type.
/// @{
[[nodiscard]] bool conforms(const URL& url, const UTIType& type);
[[nodiscard]] bool conforms(const URL& url, const ConformsToOneOf& argument);
/// @}

/// Whether this process may read the file, write it, or remove it. True for a URL that is not a
/// file's, false where nothing exists. A directory with entries counts as deletable when it may be
/// emptied: its own permissions are asked, not those of what it holds.
/// @{
[[nodiscard]] bool isReadable(const URL& url);
[[nodiscard]] bool isWritable(const URL& url);
[[nodiscard]] bool isDeletable(const URL& url);
/// @}

/// Whether the permission bits let this process read and write the item: the owner's bits when it
/// runs as the owner, else the group's when it is of the group, else the others'. Bits alone: the
/// superuser, access lists and read-only volumes may do more or less (`isReadable`, `isWritable`).
/// Of a link, those of what it points to. Absent when they cannot be found out.
std::optional<bool> checkIsReadAndWrite(const URL& url);

/// Whether `listSubFilesOrSelf` looks into sub-folders.
struct Recursively {
    bool recursively = false;
};

/// The URL alone when it has a path extension or is not a file's. Else every entry of the
/// directory, sub-folders included, without hidden ones and without what packages hold; with
/// `recursively`, also what the sub-folders hold. Empty when there is no such directory.
std::vector<URL> listSubFilesOrSelf(const URL& url, Recursively argument = {});

namespace files {

/// Keeps a shared advisory lock (`flock`) on the file or folder that has a name, so that writers
/// who ask for theirs wait.
class SharedFileLock {
public:
    /// Waits for the lock.
    explicit SharedFileLock(const URL& url);
    SharedFileLock(const SharedFileLock&) = delete;
    SharedFileLock& operator=(const SharedFileLock&) = delete;
    /// Lets the lock go.
    ~SharedFileLock();

    /// False when the file could not be opened or locked.
    explicit operator bool() const noexcept { return descriptor_ >= 0; }

private:
    int descriptor_ = -1;
};

} // namespace files

/// Calls the accessor with the URL to read from, while a shared advisory lock is held on the file
/// or folder, and gives its result. Meanwhile `NSFileManager::overwritingCopy` does not replace it,
/// in whatever process; nor does any writer that takes the exclusive `flock`. Other writers are not
/// held up. Waits for such a writer to end first. Absent, without a call, when the file cannot be
/// opened for reading. What the accessor throws passes through.
template <class Accessor>
auto readSecuredFileWithCoordinator(const URL& url, Accessor&& accessor)
    -> std::optional<std::invoke_result_t<Accessor, const URL&>> {
    const files::SharedFileLock lock(url);
    if (!lock)
        return std::nullopt;
    return std::invoke(std::forward<Accessor>(accessor), url);
}

} // namespace zorvan
