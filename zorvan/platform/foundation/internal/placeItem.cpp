#include <zorvan/platform/foundation/internal/placeItem.h>

#include <zorvan/platform/foundation/UUID.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace zorvan::internal {

namespace {

int renamed(const std::string& from, const std::string& to, unsigned flags) noexcept {
    return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) == 0 ? 0 : errno;
}

/// Whether a volume or kernel does not know the flags of a rename.
bool isUnknownFlag(int error) noexcept { return error == EINVAL || error == ENOSYS; }

/// Gives an item the access list of another, or none. Before the mode: with a list, the bits of the
/// group are only the most that the list can give.
int adoptAccessList(int item, const std::string& model) {
    constexpr const char* accessList = "system.posix_acl_access";
    const ssize_t size = ::lgetxattr(model.c_str(), accessList, nullptr, 0);
    if (size <= 0) {
        ::fremovexattr(item, accessList);
        return 0;
    }
    std::vector<char> list(static_cast<std::size_t>(size));
    const bool isAdopted =
        ::lgetxattr(model.c_str(), accessList, list.data(), list.size()) == size &&
        ::fsetxattr(item, accessList, list.data(), list.size(), 0) == 0;
    return isAdopted ? 0 : errno;
}

/// Who may do what with a file stays as it was when its content changes. An owner that cannot be
/// kept takes the set-user and set-group bits with him.
int adoptPermissions(int item, const std::string& model, const struct stat& status) {
    const bool keepsOwner = ::fchown(item, status.st_uid, status.st_gid) == 0;
    if (const int error = adoptAccessList(item, model))
        return error;
    return ::fchmod(item, status.st_mode & (keepsOwner ? 07777 : 01777)) == 0 ? 0 : errno;
}

/// Opens a file or folder that is the user's own, though its mode forbid it; no link is followed.
int openItself(const std::string& path) noexcept {
    constexpr int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int item = ::open(path.c_str(), flags);
    const bool isOpenedUp = item < 0 && errno == EACCES &&
                            ::fchmodat(AT_FDCWD, path.c_str(), 0700, AT_SYMLINK_NOFOLLOW) == 0;
    return isOpenedUp ? ::open(path.c_str(), flags) : item;
}

/// Makes an empty item of the same kind, unless something has the name.
bool makeHolder(const std::string& path, bool isFolder) noexcept {
    if (isFolder)
        return ::mkdir(path.c_str(), 0700) == 0;
    return bool(
        FileDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600)));
}

int exchange(const std::string& original, const std::string& replacement) {
    const int error = renamed(replacement, original, RENAME_EXCHANGE);
    return isUnknownFlag(error) ? replaceItemInTwoSteps(original, replacement) : error;
}

int makeFolder(const std::string& path, mode_t mode) {
    if (::mkdir(path.c_str(), mode) != 0)
        return errno == EEXIST ? 0 : errno;
    // What is waited for within it later needs it too.
    synchroniseFolder(folderOf(path));
    return 0;
}

} // namespace

int placeItem(const std::string& from, const std::string& to) noexcept {
    const int error = renamed(from, to, RENAME_NOREPLACE);
    return isUnknownFlag(error) ? placeItemByName(from, to) : error;
}

int placeItemByName(const std::string& from, const std::string& to) noexcept {
    struct stat status {};
    if (::lstat(from.c_str(), &status) != 0)
        return errno;
    const bool isFolder = S_ISDIR(status.st_mode);
    if (!isFolder && ::link(from.c_str(), to.c_str()) == 0)
        return ::unlink(from.c_str()) == 0 ? 0 : errno;
    const bool isWithoutLinks = errno == EPERM || errno == ENOSYS || errno == EOPNOTSUPP;
    if ((!isFolder && !isWithoutLinks) || !makeHolder(to, isFolder))
        return errno;
    const int error = renamed(from, to, 0);
    if (error != 0)
        ::remove(to.c_str());
    return error;
}

int replaceItem(const std::string& original, const std::string& replacement, int opened) {
    struct stat old {
    }, replacing{};
    if (::lstat(original.c_str(), &old) != 0) // it went meanwhile
        return errno == ENOENT ? placeItem(replacement, original) : errno;
    if (::lstat(replacement.c_str(), &replacing) != 0)
        return errno;
    const mode_t kind = old.st_mode & S_IFMT;
    if (kind == (replacing.st_mode & S_IFMT) && (kind == S_IFREG || kind == S_IFDIR)) {
        const FileDescriptor item(opened < 0 ? openItself(replacement)
                                             : ::fcntl(opened, F_DUPFD_CLOEXEC, 0));
        if (const int error = item ? adoptPermissions(item.get(), original, old) : errno)
            return error;
    }
    const bool hasFolder = S_ISDIR(old.st_mode) || S_ISDIR(replacing.st_mode);
    const int error =
        hasFolder ? exchange(original, replacement) : renamed(replacement, original, 0);
    if (error == 0)
        synchroniseFolder(folderOf(original));
    return error;
}

int replaceItemInTwoSteps(const std::string& original, const std::string& replacement) {
    const std::string aside = original + ".old-" + makeUUIDString();
    if (const int error = renamed(original, aside, 0))
        return error;
    if (const int error = placeItem(replacement, original)) {
        placeItem(aside, original);
        return error;
    }
    return placeItem(aside, replacement);
}

int makeFolders(const std::string& path, mode_t mode) {
    int onTheWay = 0;
    for (std::size_t slash = path.find('/', 1); slash != std::string::npos;
         slash = path.find('/', slash + 1)) {
        const int error = makeFolder(path.substr(0, slash), mode);
        if (onTheWay == 0)
            onTheWay = error;
    }
    const int error = makeFolder(path, mode);
    return error == ENOENT && onTheWay != 0 ? onTheWay : error;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(slash, 1));
}

void synchroniseFolder(const std::string& path) {
    const FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ::fsync(folder.get());
}

} // namespace zorvan::internal
