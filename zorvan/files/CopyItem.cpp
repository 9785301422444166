#include <zorvan/files/internal/CopyItem.h>

#include <zorvan/files/internal/copyContents.h>
#include <zorvan/platform/foundation/UUID.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/Release.h>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace zorvan::files {

using internal::FileDescriptor;

std::string folderOf(const std::string& path) {
    return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

void throwFileError(const char* what, const std::string& path, int error) {
    throw std::filesystem::filesystem_error(what, path,
                                            std::error_code(error, std::generic_category()));
}

Scratch Scratch::beside(const std::string& item) {
    const std::string folder = folderOf(item);
    return Scratch(folder + (folder == "/" ? "." : "/.") + makeUUIDString());
}

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// A call that failed, with the `errno` it left.
[[noreturn]] void fail(const char* what, const std::string& path) {
    throwFileError(what, path, errno);
}

FileDescriptor opened(const std::string& path, int flags, mode_t mode = 0) {
    FileDescriptor file(::open(path.c_str(), flags | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY, mode));
    if (!file)
        fail("cannot open", path);
    return file;
}

struct stat statusOf(const FileDescriptor& file, const std::string& path) {
    struct stat status {};
    if (::fstat(file.get(), &status) != 0)
        fail("cannot ask for attributes", path);
    return status;
}

using Identity = std::pair<dev_t, ino_t>;
Identity identityOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

/// The names in a folder, "." and ".." left out. `errno` is not 0 when not all could be read.
std::vector<std::string> namesIn(FileDescriptor folder) {
    std::vector<std::string> names;
    std::unique_ptr<DIR, Release<::closedir>> stream(::fdopendir(folder.get()));
    if (!stream)
        return names;
    folder.release();
    errno = 0;
    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            names.emplace_back(name);
        errno = 0;
    }
    const int error = errno;
    stream.reset();
    errno = error;
    return names;
}

/// Copies the user's own extended attributes and the access lists, those that the target takes.
void copyExtendedAttributes(int from, int to) {
    const ssize_t size = ::flistxattr(from, nullptr, 0);
    if (size <= 0)
        return;
    std::vector<char> names(static_cast<std::size_t>(size));
    const ssize_t length = ::flistxattr(from, names.data(), names.size());
    std::string_view rest(names.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    std::vector<char> value(65536); // the most that the kernel keeps
    while (!rest.empty()) {
        const std::string name(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        if (!name.starts_with("user.") && !name.starts_with("system.posix_acl_"))
            continue;
        const ssize_t count = ::fgetxattr(from, name.c_str(), value.data(), value.size());
        if (count >= 0)
            ::fsetxattr(to, name.c_str(), value.data(), static_cast<std::size_t>(count), 0);
    }
}

void copyAttributes(const FileDescriptor& from, const struct stat& status, const FileDescriptor& to,
                    const std::string& path) {
    copyExtendedAttributes(from.get(), to.get());
    const struct stat own = statusOf(to, path);
    const bool isSameOwner = own.st_uid == status.st_uid && own.st_gid == status.st_gid;
    if (::fchmod(to.get(), status.st_mode & (isSameOwner ? 07777 : 01777)) != 0)
        fail("cannot set the mode of", path);
    const timespec dates[] = {status.st_atim, status.st_mtim};
    if (::futimens(to.get(), dates) != 0)
        fail("cannot set the dates of", path);
}

class Copying {
public:
    explicit Copying(Durability durability) : durability_(durability) {}

    void copy(const std::string& from, const std::string& to) {
        struct stat status {};
        if (::lstat(from.c_str(), &status) != 0)
            fail("cannot copy", from);
        if (S_ISDIR(status.st_mode))
            copyFolder(from, to);
        else if (S_ISREG(status.st_mode))
            copyFile(from, to);
        else
            S_ISLNK(status.st_mode) ? copyLink(from, status, to) : copySpecial(status, to);
    }

    /// Waits for what `copy` has not waited for.
    void finish(const std::string& to) const {
        // One wait for the volume, where a wait for every file of a folder could take minutes.
        if (durability_ == Durability::onDisk && needsVolumeSync_)
            synchroniseVolumeOf(to);
    }

private:
    void copyFolder(const std::string& from, const std::string& to) {
        const FileDescriptor source = opened(from, folderFlags);
        const struct stat status = statusOf(source, from);
        if (root_ == identityOf(status))
            throwFileError("cannot copy a folder into itself:", from, EINVAL);
        if (::mkdir(to.c_str(), 0700) != 0)
            fail("cannot make the folder", to);
        const FileDescriptor target = opened(to, folderFlags);
        if (!root_)
            root_ = identityOf(statusOf(target, to));
        needsVolumeSync_ = true;

        const std::vector<std::string> names = namesIn(FileDescriptor(::dup(source.get())));
        if (errno != 0)
            fail("cannot list", from);
        for (const std::string& name : names)
            copy(from + '/' + name, to + '/' + name);
        copyAttributes(source, status, target, to);
    }

    void copyFile(const std::string& from, const std::string& to) {
        // Not blocking, should a pipe have taken the file's name meanwhile.
        const FileDescriptor source = opened(from, O_RDONLY | O_NONBLOCK);
        const struct stat status = statusOf(source, from);
        if (!S_ISREG(status.st_mode))
            throwFileError("cannot copy", from, EINVAL);
        const FileDescriptor target = opened(to, O_WRONLY | O_CREAT | O_EXCL, 0600);
        if (const int error =
                copyContents(source.get(), status, target.get(), durability_ == Durability::onDisk))
            throwFileError("cannot copy", from, error);
        copyAttributes(source, status, target, to);
        if (durability_ == Durability::onDisk && !root_ && ::fsync(target.get()) != 0)
            fail("cannot write to the disk", to);
    }

    void copyLink(const std::string& from, const struct stat& status, const std::string& to) {
        std::error_code error;
        const std::string target = std::filesystem::read_symlink(from, error);
        if (error)
            throwFileError("cannot read the link", from, error.value());
        if (::symlink(target.c_str(), to.c_str()) != 0)
            fail("cannot make the link", to);
        copyDates(status, to);
    }

    /// Pipes, sockets, devices. Only the superuser makes devices.
    void copySpecial(const struct stat& status, const std::string& to) {
        if (::mknod(to.c_str(), (status.st_mode & S_IFMT) | 0600, status.st_rdev) != 0)
            fail("cannot make", to);
        if (::chmod(to.c_str(), status.st_mode & 0777) != 0)
            fail("cannot set the mode of", to);
        copyDates(status, to);
    }

    void copyDates(const struct stat& status, const std::string& to) {
        needsVolumeSync_ = true;
        const timespec dates[] = {status.st_atim, status.st_mtim};
        if (::utimensat(AT_FDCWD, to.c_str(), dates, AT_SYMLINK_NOFOLLOW) != 0)
            fail("cannot set the dates of", to);
    }

    Durability durability_;
    std::optional<Identity> root_; // the folder that everything is copied to
    bool needsVolumeSync_ = false;
};

void removeFolder(const std::string& path) {
    if (::faccessat(AT_FDCWD, path.c_str(), R_OK | W_OK | X_OK, AT_EACCESS) != 0)
        ::chmod(path.c_str(), 0700);
    for (const std::string& name : namesIn(FileDescriptor(::open(path.c_str(), folderFlags))))
        removeItem(path + '/' + name);
    ::rmdir(path.c_str());
}

} // namespace

void copyItem(const std::string& from, const std::string& to, Durability durability) {
    Copying copying(durability);
    copying.copy(from, to);
    copying.finish(to);
}

void synchroniseVolumeOf(const std::string& path) {
    const FileDescriptor folder = opened(folderOf(path), O_RDONLY | O_DIRECTORY);
    if (::syncfs(folder.get()) != 0)
        fail("cannot write to the disk", path);
}

void removeItem(const std::string& path) noexcept {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        return;
    if (!S_ISDIR(status.st_mode)) {
        ::unlink(path.c_str());
        return;
    }
    try {
        removeFolder(path);
    } catch (const std::exception&) {
        // Out of memory: what is left stays.
    }
}

} // namespace zorvan::files
