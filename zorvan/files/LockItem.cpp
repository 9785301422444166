#include <zorvan/files/internal/LockItem.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace zorvan::files {

namespace {

bool waitForLock(int descriptor, LockKind kind) {
    const int operation = kind == LockKind::shared ? LOCK_SH : LOCK_EX;
    int result = 0;
    do
        result = ::flock(descriptor, operation);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

} // namespace

internal::FileDescriptor lockItem(const std::string& path, LockKind kind) {
    const bool follows = kind == LockKind::shared;
    for (;;) {
        internal::FileDescriptor item(
            ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | (follows ? 0 : O_NOFOLLOW)));
        if (!item || !waitForLock(item.get(), kind))
            return {};
        struct stat locked {
        }, named{};
        if (::fstat(item.get(), &locked) != 0 ||
            ::fstatat(AT_FDCWD, path.c_str(), &named, follows ? 0 : AT_SYMLINK_NOFOLLOW) != 0)
            return {};
        // Another item may have taken the name during the wait.
        if (locked.st_dev == named.st_dev && locked.st_ino == named.st_ino)
            return item;
    }
}

} // namespace zorvan::files
