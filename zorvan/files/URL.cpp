#include <zorvan/files/URL.h>

#include <zorvan/files/NSFileManager.h>
#include <zorvan/files/internal/LockItem.h>
#include <zorvan/platform/foundation/internal/hasNUL.h>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorvan {

using internal::systemPath;

std::string lastPathTitle(const URL& url) {
    return url.deletingPathExtension().lastPathComponent();
}

URL replacingPathExtension(const URL& url, std::string_view extension) {
    return url.deletingPathExtension().appendingPathExtension(extension);
}

bool isParent(const URL& url, const URL& other) {
    const std::vector<std::string> mine = url.pathComponents();
    const std::vector<std::string> others = other.pathComponents();
    return mine.size() <= others.size() && std::equal(mine.begin(), mine.end(), others.begin());
}

bool isFileParent(const URL& url, const URL& other) noexcept {
    return other.path().starts_with(url.path());
}

URL parentOrSelf(const URL& url) {
    return url.pathExtension().empty() ? url : url.deletingLastPathComponent();
}

std::optional<URLResourceValues> resourceValues(const URL& url) {
    struct stat status {};
    if (!url.isFileURL() || ::lstat(systemPath(url.path()), &status) != 0)
        return std::nullopt;
    const bool isLink = S_ISLNK(status.st_mode);
    return URLResourceValues{.isSymbolicLink = isLink, .isAliasFile = isLink};
}

std::optional<bool> checkIsAlias(const URL& url) {
    const auto values = resourceValues(url);
    if (!values)
        return std::nullopt;
    return values->isSymbolicLink && values->isAliasFile;
}

namespace {

/// The mount that holds a path. Unlike the device number, it tells bind mounts and sub-volumes
/// apart.
std::optional<std::uint64_t> mountOf(const std::string& path) {
    struct statx status {};
    if (::statx(AT_FDCWD, systemPath(path), 0, STATX_MNT_ID, &status) != 0)
        return std::nullopt;
    if (status.stx_mask & STATX_MNT_ID)
        return status.stx_mnt_id;
    return std::uint64_t{status.stx_dev_major} << 32 | status.stx_dev_minor; // kernels before 5.8
}

bool isAllowed(const std::string& path, int mode) {
    return ::faccessat(AT_FDCWD, systemPath(path), mode, AT_EACCESS) == 0;
}

/// In a directory with the sticky bit only the owners of the entry and of the directory, and the
/// superuser, remove entries.
bool isKeptByStickyBit(const struct stat& item, const struct stat& directory) {
    const uid_t user = ::geteuid();
    return (directory.st_mode & S_ISVTX) && user != 0 && user != item.st_uid &&
           user != directory.st_uid;
}

bool belongsToGroup(gid_t group) {
    if (group == ::getegid())
        return true;
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(::getgroups(0, nullptr), 0)));
    const int count = ::getgroups(static_cast<int>(groups.size()), groups.data());
    groups.resize(static_cast<std::size_t>(std::max(count, 0)));
    return std::find(groups.begin(), groups.end(), group) != groups.end();
}

} // namespace

std::optional<bool> checkIsOnMainDisk(const URL& url) {
    const auto mount = url.isFileURL() ? mountOf(url.path()) : std::nullopt;
    const auto main = mountOf("/");
    if (!mount || !main)
        return std::nullopt;
    return *mount == *main;
}

std::optional<UTIType> utiType(const URL& url) {
    return UTIType::make({.fileExtension = url.pathExtension()});
}

bool conforms(const URL& url, const UTIType& type) {
    const auto own = utiType(url);
    return own && own->conforms(type);
}

bool conforms(const URL& url, const ConformsToOneOf& argument) {
    const auto own = utiType(url);
    return own && std::any_of(argument.toOneOf.begin(), argument.toOneOf.end(),
                              [&](const UTIType& type) { return own->conforms(type); });
}

bool isReadable(const URL& url) { return !url.isFileURL() || isAllowed(url.path(), R_OK); }

bool isWritable(const URL& url) { return !url.isFileURL() || isAllowed(url.path(), W_OK); }

bool isDeletable(const URL& url) {
    if (!url.isFileURL())
        return true;
    const std::string parent = url.deletingLastPathComponent().path();
    struct stat item {
    }, directory{};
    if (url == URL::root() || ::lstat(systemPath(url.path()), &item) != 0 ||
        ::stat(systemPath(parent), &directory) != 0)
        return false;
    return isAllowed(parent, W_OK | X_OK) && !isKeptByStickyBit(item, directory) &&
           (!S_ISDIR(item.st_mode) || isAllowed(url.path(), W_OK | X_OK));
}

std::optional<bool> checkIsReadAndWrite(const URL& url) {
    struct stat status {};
    if (!url.isFileURL() || ::stat(systemPath(url.path()), &status) != 0)
        return std::nullopt;
    const mode_t wanted = status.st_uid == ::geteuid()    ? S_IRUSR | S_IWUSR
                          : belongsToGroup(status.st_gid) ? S_IRGRP | S_IWGRP
                                                          : S_IROTH | S_IWOTH;
    return (status.st_mode & wanted) == wanted;
}

std::vector<URL> listSubFilesOrSelf(const URL& url, Recursively argument) {
    if (!url.isFileURL() || !url.pathExtension().empty())
        return {url};
    const NSFileManager& manager = *NSFileManager::defaultManager();
    return manager.contentExists(url).isDir
               ? manager.searchFiles({url}, {.recursive = argument.recursively})
               : std::vector<URL>();
}

namespace files {

SharedFileLock::SharedFileLock(const URL& url)
    : descriptor_(url.isFileURL() ? lockForReading(url.path()).release() : -1) {}

SharedFileLock::~SharedFileLock() {
    if (descriptor_ >= 0)
        unlockAfterReading(internal::FileDescriptor(descriptor_));
}

} // namespace files

} // namespace zorvan
