#include <zorvan/platform/privatestore/internal/PrivateFolder.h>

#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/foundation/internal/placeItem.h>
#include <zorvan/platform/privatestore/internal/patience.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <system_error>
#include <unistd.h>

namespace zorvan::privatestore {

namespace {

using zorvan::internal::FileDescriptor;

constexpr mode_t othersMay = 0077;
constexpr mode_t othersMayWrite = 0022;

[[noreturn]] void fail(int error, const std::string& path) {
    throw std::system_error(error, std::generic_category(), path);
}

/// Absent when there is nothing of that name.
std::optional<struct stat> statusOf(int folder, const std::string& path) {
    struct stat status {};
    if (::fstatat(folder, path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0)
        return status;
    if (errno == ENOENT || errno == ENOTDIR)
        return std::nullopt;
    fail(errno, path);
}

struct stat statusOf(const FileDescriptor& file, const std::string& path) {
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        fail(errno, path);
    return status;
}

FileDescriptor openedFolder(const std::string& path) {
    FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder && (errno == ELOOP || errno == ENOTDIR))
        throw Refusal("its folder is no folder, or a symbolic link to one");
    if (!folder)
        fail(errno, path);
    return folder;
}

std::string resolved(const std::string& path) {
    const std::unique_ptr<char, Release<::free>> real(::realpath(path.c_str(), nullptr));
    if (!real)
        fail(errno, path);
    return real.get();
}

} // namespace

std::string PrivateFolder::path(const std::string& name) const {
    return (open_ ? open_->realPath : path_) + '/' + name;
}

void PrivateFolder::check(const struct stat& folder) const {
    if (!S_ISDIR(folder.st_mode))
        throw Refusal("its folder is no folder, or a symbolic link to one");
    if (folder.st_uid != ::geteuid())
        throw Refusal("its folder belongs to another user");
    if (policy_ == Policy::refuse && (folder.st_mode & othersMay) != 0)
        throw Refusal("its folder is open to other users");
    if (policy_ == Policy::closeFiles && (folder.st_mode & othersMayWrite) != 0)
        throw Refusal("its folder may be written by other users");
}

void PrivateFolder::checkFile(const struct stat& file) const {
    if (S_ISLNK(file.st_mode))
        throw Refusal("a symbolic link stands in its place");
    if (!S_ISREG(file.st_mode))
        throw Refusal("what stands in its place is no file");
    if (file.st_uid != ::geteuid())
        throw Refusal("it belongs to another user");
    if (file.st_nlink != 1)
        throw Refusal("it has another name as well");
    if (policy_ == Policy::refuse && (file.st_mode & othersMay) != 0)
        throw Refusal("it is open to other users");
}

bool PrivateFolder::exists() const {
    const auto status = statusOf(AT_FDCWD, path_);
    if (status)
        check(*status);
    return status.has_value();
}

void PrivateFolder::create() const {
    if (const int error = zorvan::internal::makeFolders(path_, 0700))
        fail(error, path_);
    if (!exists())
        fail(ENOENT, path_);
}

void PrivateFolder::open() {
    FileDescriptor folder = openedFolder(path_);
    const struct stat status = statusOf(folder, path_);
    check(status);
    if (policy_ == Policy::close && (status.st_mode & othersMay) != 0 &&
        ::fchmod(folder.get(), 0700) != 0)
        throw Refusal("its folder is open to other users");
    open_ = std::make_shared<const Open>(Open{std::move(folder), status, resolved(path_)});
}

bool PrivateFolder::isInPlace() const {
    const auto now = statusOf(AT_FDCWD, path_);
    if (now)
        check(*now);
    return now && open_ && now->st_ino == open_->status.st_ino &&
           now->st_dev == open_->status.st_dev;
}

void PrivateFolder::sync() const {
    const FileDescriptor folder = openedFolder(path_);
    if (::fsync(folder.get()) != 0)
        fail(errno, path_);
}

FileDescriptor PrivateFolder::lock() const {
    FileDescriptor folder = openedFolder(path_);
    const bool isDone = waitFor([&] {
        return zorvan::internal::lockDescriptor(folder.get(), LOCK_EX | LOCK_NB) ||
               errno != EWOULDBLOCK;
    });
    if (!isDone)
        fail(ETIMEDOUT, path_);
    return folder;
}

std::optional<struct stat> PrivateFolder::statusOfAny(const std::string& name) const {
    return open_ ? statusOf(open_->descriptor.get(), name) : statusOf(AT_FDCWD, path(name));
}

std::optional<struct stat> PrivateFolder::statusOfFile(const std::string& name) const {
    const auto status = statusOfAny(name);
    if (!status)
        return std::nullopt;
    checkFile(*status);
    if ((status->st_mode & othersMay) != 0 && ::chmod(path(name).c_str(), 0600) != 0)
        throw Refusal("it is open to other users");
    return status;
}

void PrivateFolder::createFile(const std::string& name) const {
    // Never opened when it is there: closing it again would drop the locks that a database in this
    // process has on it.
    const FileDescriptor file(
        ::open(path(name).c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (file)
        sync(); // or a power failure could take the name away again
    else if (errno != EEXIST)
        fail(errno, path(name));
    if (!statusOfFile(name))
        fail(ENOENT, path(name));
}

FileDescriptor PrivateFolder::openFile(const std::string& name) const {
    FileDescriptor file(::open(path(name).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (file)
        checkFile(statusOf(file, name));
    else if (errno == ELOOP)
        throw Refusal("a symbolic link stands in its place");
    else if (errno != ENOENT)
        fail(errno, path(name));
    return file;
}

} // namespace zorvan::privatestore
