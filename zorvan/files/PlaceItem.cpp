#include <zorvan/files/internal/PlaceItem.h>

#include <zorvan/files/internal/CopyItem.h>
#include <zorvan/files/internal/LockItem.h>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorvan::files {

namespace {

int renamed(const std::string& from, const std::string& to, unsigned flags) noexcept {
    return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) == 0 ? 0 : errno;
}

/// The name is in place whether or not the wait succeeds.
void synchroniseFolder(const std::string& path) {
    const internal::FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ::fsync(folder.get());
}

/// Who may do what with a file stays as it was when its content changes. An owner that cannot be
/// kept takes the set-user and set-group bits with him.
int adoptPermissions(const std::string& path, const struct stat& model) noexcept {
    const bool keepsOwner = ::lchown(path.c_str(), model.st_uid, model.st_gid) == 0;
    return ::chmod(path.c_str(), model.st_mode & (keepsOwner ? 07777 : 01777)) == 0 ? 0 : errno;
}

} // namespace

int placeItem(const std::string& from, const std::string& to) noexcept {
    const int error = renamed(from, to, RENAME_NOREPLACE);
    return error == EINVAL || error == ENOSYS ? placeItemByName(from, to) : error;
}

int placeItemByName(const std::string& from, const std::string& to) noexcept {
    struct stat status {};
    if (::lstat(from.c_str(), &status) != 0)
        return errno;
    if (!S_ISDIR(status.st_mode)) {
        if (::link(from.c_str(), to.c_str()) != 0)
            return errno;
        return ::unlink(from.c_str()) == 0 ? 0 : errno;
    }
    if (::mkdir(to.c_str(), 0700) != 0)
        return errno;
    const int error = renamed(from, to, 0);
    if (error != 0)
        ::rmdir(to.c_str());
    return error;
}

int replaceItem(const std::string& original, const std::string& replacement) {
    const internal::FileDescriptor lock = lockItem(original, LockKind::exclusive);
    struct stat old {
    }, replacing{};
    if (::lstat(original.c_str(), &old) != 0 || ::lstat(replacement.c_str(), &replacing) != 0)
        return errno;
    const bool isSameKind = (old.st_mode & S_IFMT) == (replacing.st_mode & S_IFMT);
    if (isSameKind && !S_ISLNK(old.st_mode))
        if (const int error = adoptPermissions(replacement, old))
            return error;
    const bool hasFolder = S_ISDIR(old.st_mode) || S_ISDIR(replacing.st_mode);
    const int error = renamed(replacement, original, hasFolder ? RENAME_EXCHANGE : 0u);
    if (error == 0)
        synchroniseFolder(folderOf(original));
    return error;
}

} // namespace zorvan::files
