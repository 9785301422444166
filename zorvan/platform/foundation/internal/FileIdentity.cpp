#include <zorvan/platform/foundation/internal/FileIdentity.h>

#include <zorvan/platform/foundation/internal/hasNUL.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace zorvan::internal {

namespace {

std::optional<FileIdentity> identityAt(int folder, const char* path, int flags) {
    struct statx status {};
    if (::statx(folder, path, flags, STATX_INO | STATX_BTIME, &status) != 0)
        return std::nullopt;
    FileIdentity identity;
    identity.device = makedev(status.stx_dev_major, status.stx_dev_minor);
    identity.inode = status.stx_ino;
    if ((status.stx_mask & STATX_BTIME) != 0)
        identity.birth = status.stx_btime.tv_sec * 1'000'000'000 + status.stx_btime.tv_nsec;
    return identity;
}

} // namespace

std::optional<FileIdentity> FileIdentity::at(const std::string& path) {
    return identityAt(AT_FDCWD, systemPath(path), AT_SYMLINK_NOFOLLOW);
}

std::optional<FileIdentity> FileIdentity::of(int file) {
    return identityAt(file, "", AT_EMPTY_PATH);
}

} // namespace zorvan::internal
