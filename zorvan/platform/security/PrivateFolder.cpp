#include <zorvan/platform/security/internal/PrivateFolder.h>

#include <zorvan/platform/foundation/NSHomeDirectory.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/makeFolders.h>
#include <zorvan/platform/security/internal/Failure.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace zorvan::security {

namespace {

using zorvan::internal::FileDescriptor;

constexpr mode_t othersBits = 0077;

[[noreturn]] void failFor(int error) {
    switch (error) {
    case ENOSPC:
    case EDQUOT:
        throw Failure{errSecDiskFull};
    case ELOOP:
    case EACCES:
    case EPERM:
        throw Failure{errSecAuthFailed};
    default:
        throw Failure{errSecIO};
    }
}

std::string homeFolder() {
    std::string home = NSHomeDirectory();
    if (home.empty())
        throw Failure{errSecNotAvailable};
    return home;
}

/// Absent when there is nothing of that name.
std::optional<struct stat> statusOf(int folder, const std::string& path) {
    struct stat status {};
    if (::fstatat(folder, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
        return status;
    if (errno == ENOENT || errno == ENOTDIR)
        return std::nullopt;
    failFor(errno);
}

bool isUsersAlone(const struct stat& status) {
    return status.st_uid == ::geteuid() && (status.st_mode & othersBits) == 0;
}

} // namespace

std::string PrivateFolder::standardPath() {
    const char* const data = ::secure_getenv("XDG_DATA_HOME");
    const std::string base = data && data[0] == '/' ? data : homeFolder() + "/.local/share";
    return base + "/zorvan/secure-items";
}

std::optional<struct stat> PrivateFolder::status() const {
    const auto status = statusOf(AT_FDCWD, path_);
    if (status && (!S_ISDIR(status->st_mode) || !isUsersAlone(*status)))
        throw Failure{errSecAuthFailed};
    return status;
}

bool PrivateFolder::exists() const { return status().has_value(); }

void PrivateFolder::create() const {
    if (exists())
        return;
    if (const int error = zorvan::internal::makeFolders(path_, 0700))
        failFor(error);
    if (!exists())
        throw Failure{errSecIO};
}

std::optional<struct stat> PrivateFolder::statusOfAny(const char* name) const {
    return open_ ? statusOf(open_->descriptor.get(), name) : statusOf(AT_FDCWD, path(name));
}

std::optional<struct stat> PrivateFolder::statusOfFile(const char* name) const {
    const auto status = statusOfAny(name);
    if (status && (!S_ISREG(status->st_mode) || !isUsersAlone(*status) || status->st_nlink != 1))
        throw Failure{errSecAuthFailed};
    return status;
}

void PrivateFolder::createFile(const char* name) const {
    // Never opened when it is there: closing it again would drop the locks that a database in this
    // process has on it.
    const FileDescriptor file(
        ::open(path(name).c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file && errno != EEXIST)
        failFor(errno);
    if (!statusOfFile(name))
        throw Failure{errSecIO};
}

void PrivateFolder::open() {
    FileDescriptor folder(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!folder || ::fstat(folder.get(), &status) != 0)
        failFor(errno);
    open_ = std::make_shared<const Open>(Open{std::move(folder), status.st_dev, status.st_ino});
}

bool PrivateFolder::isInPlace() const {
    const auto now = status();
    return now && open_ && now->st_ino == open_->node && now->st_dev == open_->device;
}

void PrivateFolder::sync() const {
    const FileDescriptor folder(::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder || ::fsync(folder.get()) != 0)
        failFor(errno);
}

} // namespace zorvan::security
