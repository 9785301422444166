#include <zorvan/platform/foundation/internal/removeItem.h>

#include <zorvan/platform/foundation/internal/DirectoryWalk.h>

#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zorvan::internal {

namespace {

/// By its descriptor, where it can be had: by its name there is a way only where "/proc" is.
void openUp(int parent, const char* name) noexcept {
    const FileDescriptor folder(
        ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder || ::fchmod(folder.get(), 0700) != 0)
        ::fchmodat(parent, name, 0700, AT_SYMLINK_NOFOLLOW);
}

/// Removes a folder that is empty, and makes sure that what another holds can be removed.
void removeOrOpenUp(int parent, const char* name) noexcept {
    if (::unlinkat(parent, name, AT_REMOVEDIR) == 0)
        return;
    if (::faccessat(parent, name, R_OK | W_OK | X_OK, AT_EACCESS) != 0)
        openUp(parent, name);
}

void removeContents(const std::string& path) {
    const auto walk = DirectoryWalk::open(path, DirectoryWalk::Visits::around);
    while (walk && walk->advance()) {
        if (walk->kind() == EntryKind::directory)
            removeOrOpenUp(walk->folder(), walk->name().data());
        else
            ::unlinkat(walk->folder(), walk->name().data(), 0);
    }
}

} // namespace

int removeItem(const std::string& path) noexcept {
    if (::unlink(path.c_str()) == 0 || errno == ENOENT)
        return 0;
    if (errno != EISDIR)
        return errno;
    removeOrOpenUp(AT_FDCWD, path.c_str());
    try {
        removeContents(path);
    } catch (const std::exception&) {
        // Out of memory: what is left stays.
    }
    return ::rmdir(path.c_str()) == 0 || errno == ENOENT ? 0 : errno;
}

} // namespace zorvan::internal
