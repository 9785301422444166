#include <zorvan/platform/settingsdatabase/internal/SettingsPlace.h>

#include <zorvan/platform/foundation/internal/makeFolders.h>
#include <zorvan/platform/settingsdatabase/SettingsFolder.h>
#include <zorvan/platform/settingsdatabase/internal/SettingsFile.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace zorvan::internal {

namespace {

[[noreturn]] void failWithErrno(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

SettingsPlace::SettingsPlace(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash);
    try {
        makeFolder(folder.empty() ? "/" : folder);
        char* real = ::realpath(folder.empty() ? "/" : folder.c_str(), nullptr);
        if (!real)
            failWithErrno(folder);
        path_ = std::string(real) + path.substr(slash == std::string::npos ? 0 : slash);
        std::free(real);
        for (const char* ending : {"", "-wal", "-shm"})
            checkFile(path_ + ending);
        makeFile();
    } catch (...) {
        if (folder_ >= 0)
            ::close(folder_);
        throw;
    }
}

SettingsPlace::~SettingsPlace() { ::close(folder_); }

void SettingsPlace::makeFolder(const std::string& folder) {
    errno = makeFolders(folder, 0700);
    if (errno != 0)
        failWithErrno(folder);
    folder_ = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder_ < 0 && (errno == ELOOP || errno == ENOTDIR))
        throw RefusedFile("its folder is no folder, or a symbolic link to one");
    struct stat status {};
    if (folder_ < 0 || ::fstat(folder_, &status) != 0)
        failWithErrno(folder);
    if (status.st_uid != ::geteuid())
        throw RefusedFile("its folder belongs to another user");
    // Only the folder that is there for settings alone is ours to close.
    if ((status.st_mode & 077) != 0 && folder == settingsFolder() && ::fchmod(folder_, 0700) != 0)
        throw RefusedFile("its folder is open to other users");
    if ((status.st_mode & 022) != 0 && folder != settingsFolder())
        throw RefusedFile("its folder may be written by other users");
    while (::flock(folder_, LOCK_EX) != 0)
        if (errno != EINTR)
            break; // some file systems have no locks; the engine's own are what counts
}

void SettingsPlace::checkFile(const std::string& path) const {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        if (errno == ENOENT)
            return;
        failWithErrno(path);
    }
    if (S_ISLNK(status.st_mode))
        throw RefusedFile("a symbolic link stands in its place");
    if (!S_ISREG(status.st_mode))
        throw RefusedFile("what stands in its place is no file");
    if (status.st_uid != ::geteuid())
        throw RefusedFile("it belongs to another user");
    if ((status.st_mode & 077) != 0 && ::chmod(path.c_str(), 0600) != 0)
        throw RefusedFile("it is open to other users");
}

void SettingsPlace::makeFile() const {
    const int file =
        ::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file >= 0) {
        ::close(file);
        ::fsync(folder_); // or a power failure could take the name away again
    } else if (errno != EEXIST) {
        failWithErrno(path_);
    }
}

bool SettingsPlace::hasLog() const {
    struct stat status {};
    return ::lstat((path_ + "-wal").c_str(), &status) == 0 && status.st_size > 0;
}

std::string SettingsPlace::setAside() {
    std::string aside = path_ + ".damaged";
    for (int number = 2;; ++number) {
        if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0)
            break;
        if (errno != EEXIST || number > 9999)
            failWithErrno(path_);
        aside = path_ + ".damaged-" + std::to_string(number);
    }
    ::rename((path_ + "-wal").c_str(), (aside + "-wal").c_str());
    ::unlink((path_ + "-shm").c_str());
    makeFile();
    return aside;
}

} // namespace zorvan::internal
