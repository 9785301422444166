#include <zorvan/files/internal/CopyItem.h>

#include <zorvan/platform/foundation/internal/DirectoryWalk.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/openForReading.h>
#include <zorvan/platform/foundation/internal/placeItem.h>

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <limits.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace zorvan::files {

using internal::DirectoryWalk, internal::EntryKind, internal::FileDescriptor, internal::NewFile;

void throwFileError(const char* what, const std::string& path, int error) {
    throw std::filesystem::filesystem_error(what, path,
                                            std::error_code(error, std::generic_category()));
}

namespace {

constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

/// An item as the kernel is asked for it, whose path may be too long for that, and as errors name
/// it.
struct Place {
    int folder;
    const char* name;
    const std::string& path;
};

Place placeOf(const std::string& path) { return {AT_FDCWD, path.c_str(), path}; }

/// A call that failed, with the `errno` it left.
[[noreturn]] void fail(const char* what, const Place& place) {
    throwFileError(what, place.path, errno);
}

FileDescriptor opened(const Place& place, int flags, mode_t mode = 0) {
    FileDescriptor file(
        ::openat(place.folder, place.name, flags | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY, mode));
    if (!file)
        fail("cannot open", place);
    return file;
}

struct stat statusOf(int file, const Place& place) {
    struct stat status {};
    if (::fstat(file, &status) != 0)
        fail("cannot ask for attributes", place);
    return status;
}

struct stat statusOf(const Place& place) {
    struct stat status {};
    if (::fstatat(place.folder, place.name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        fail("cannot copy", place);
    return status;
}

using Identity = std::pair<dev_t, ino_t>;
Identity identityOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

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

void copyAttributes(int from, const struct stat& status, int to, const Place& place) {
    copyExtendedAttributes(from, to);
    const struct stat own = statusOf(to, place);
    const bool isSameOwner = own.st_uid == status.st_uid && own.st_gid == status.st_gid;
    if (::fchmod(to, status.st_mode & (isSameOwner ? 07777 : 01777)) != 0)
        fail("cannot set the mode of", place);
    const timespec dates[] = {status.st_atim, status.st_mtim};
    if (::futimens(to, dates) != 0)
        fail("cannot set the dates of", place);
}

/// All of an open file but its name.
void copyFile(int from, const struct stat& status, int to, const Place& place, bool startsWriting) {
    if (const int error = copyContents(from, status, to, startsWriting))
        throwFileError("cannot copy", place.path, error);
    copyAttributes(from, status, to, place);
}

/// Opens a file to be copied, unless something else has taken its name meanwhile.
FileDescriptor openedFile(const Place& place, struct stat& status) {
    FileDescriptor file = internal::openRegularFile(place.folder, place.name, status, O_NOFOLLOW);
    if (!file)
        fail("cannot open", place);
    return file;
}

void copyDates(const struct stat& status, const Place& to) {
    const timespec dates[] = {status.st_atim, status.st_mtim};
    if (::utimensat(to.folder, to.name, dates, AT_SYMLINK_NOFOLLOW) != 0)
        fail("cannot set the dates of", to);
}

void copyLink(const Place& from, const struct stat& status, const Place& to) {
    std::vector<char> target(PATH_MAX);
    const ssize_t length = ::readlinkat(from.folder, from.name, target.data(), target.size() - 1);
    if (length < 0)
        fail("cannot read the link", from);
    target[static_cast<std::size_t>(length)] = '\0';
    if (::symlinkat(target.data(), to.folder, to.name) != 0)
        fail("cannot make the link", to);
    copyDates(status, to);
}

/// Pipes, sockets, devices. Only the superuser makes devices.
void copySpecial(const struct stat& status, const Place& to) {
    const mode_t mode = status.st_mode & 0777;
    if (::mknodat(to.folder, to.name, (status.st_mode & S_IFMT) | mode, status.st_rdev) != 0)
        fail("cannot make", to);
    // What the process's mask has taken away stays away where "/proc" is not there.
    if (::fchmodat(to.folder, to.name, mode, AT_SYMLINK_NOFOLLOW) != 0 && errno != EOPNOTSUPP)
        fail("cannot set the mode of", to);
    copyDates(status, to);
}

/// What is no folder.
void copyLeaf(const Place& from, const Place& to, Durability durability) {
    struct stat status = statusOf(from);
    if (S_ISLNK(status.st_mode))
        return copyLink(from, status, to);
    if (!S_ISREG(status.st_mode))
        return copySpecial(status, to);
    const FileDescriptor source = openedFile(from, status);
    const FileDescriptor target = opened(to, O_WRONLY | O_CREAT | O_EXCL, 0600);
    copyFile(source.get(), status, target.get(), from, durability == Durability::onDisk);
}

/// Keeps a descriptor of the one folder that is being filled, whatever the depth; the way back up
/// leads through "..".
class FolderCopy {
public:
    FolderCopy(const std::string& from, const std::string& to, Durability durability)
        : from_(from), to_(to), durability_(durability) {}

    void run() {
        const FileDescriptor source = opened(placeOf(from_), folderFlags);
        makeTarget(AT_FDCWD, to_.c_str());
        const auto walk = DirectoryWalk::open(from_, DirectoryWalk::Visits::around);
        if (!walk)
            fail("cannot list", placeOf(from_));
        while (walk->advance()) {
            expectAllSeen(*walk);
            visit(*walk);
        }
        expectAllSeen(*walk);
        targetPath_ = to_;
        finishTarget(source);
    }

private:
    void expectAllSeen(const DirectoryWalk& walk) const {
        if (walk.error() != 0)
            throwFileError("cannot list all of", from_, walk.error());
    }

    void visit(const DirectoryWalk& walk) {
        const char* const name = walk.name().data();
        const Place source{walk.folder(), name, walk.path()};
        targetPath_ = to_ + walk.path().substr(from_ == "/" ? 0 : from_.size());
        if (walk.kind() != EntryKind::directory)
            copyLeaf(source, {target_.get(), name, targetPath_}, durability_);
        else if (walk.isLeaving())
            leave(opened(source, folderFlags));
        else
            enter(source, name);
    }

    void enter(const Place& source, const char* name) {
        // Opened, because the walk would pass over one that cannot be, and say so only later.
        if (folders_.front() == identityOf(statusOf(opened(source, folderFlags).get(), source)))
            throwFileError("cannot copy a folder into itself:", source.path, EINVAL);
        makeTarget(target_.get(), name);
    }

    void makeTarget(int folder, const char* name) {
        const Place place{folder, name, targetPath_};
        if (::mkdirat(folder, name, 0700) != 0)
            fail("cannot make the folder", place);
        target_ = opened(place, folderFlags);
        folders_.push_back(identityOf(statusOf(target_.get(), place)));
    }

    void leave(const FileDescriptor& source) {
        // Before the attributes, which may forbid it.
        FileDescriptor parent = opened({target_.get(), "..", targetPath_}, folderFlags);
        finishTarget(source);
        folders_.pop_back();
        target_ = std::move(parent);
        if (folders_.back() != identityOf(statusOf(target_.get(), placeOf(targetPath_))))
            throwFileError("was moved while it was being filled:", targetPath_, ESTALE);
    }

    void finishTarget(const FileDescriptor& source) {
        const Place place = placeOf(targetPath_);
        copyAttributes(source.get(), statusOf(source.get(), place), target_.get(), place);
    }

    const std::string& from_;
    const std::string& to_;
    Durability durability_;
    std::string targetPath_ = to_;
    FileDescriptor target_;         // the folder that is being filled
    std::vector<Identity> folders_; // those from the first of the copy to that one
};

} // namespace

void copyItem(const std::string& from, const std::string& to, Durability durability) {
    if (S_ISDIR(statusOf(placeOf(from)).st_mode))
        FolderCopy(from, to, durability).run();
    else
        copyLeaf(placeOf(from), placeOf(to), durability);
    // One wait for the volume, where a wait for every file of a folder could take minutes.
    if (durability == Durability::onDisk)
        synchroniseVolumeOf(to);
}

UnplacedCopy::UnplacedCopy(const std::string& item, const std::string& scratchName,
                           Durability durability) {
    struct stat status = statusOf(placeOf(item));
    if (!S_ISREG(status.st_mode)) {
        makeItem(item, scratchName, durability);
        return;
    }
    const FileDescriptor source = openedFile(placeOf(item), status);
    makeFile(source.get(), status, scratchName, durability);
}

UnplacedCopy::UnplacedCopy(const UnplacedCopy& copy, const std::string& scratchName,
                           Durability durability) {
    if (!copy.file_) {
        makeItem(copy.scratch_->path(), scratchName, durability);
        return;
    }
    const int source = copy.file_->descriptor();
    makeFile(source, statusOf(source, placeOf(scratchName)), scratchName, durability);
}

void UnplacedCopy::makeFile(int source, const struct stat& status, const std::string& scratchName,
                            Durability durability) {
    const NewFile& file = file_.emplace(scratchName, 0600);
    const bool isDurable = durability == Durability::onDisk;
    if (file.error() != 0)
        throwFileError("cannot make", scratchName, file.error());
    copyFile(source, status, file.descriptor(), placeOf(scratchName), isDurable);
    if (const int error = isDurable ? file.synchronise() : 0)
        throwFileError("cannot write to the disk", scratchName, error);
}

void UnplacedCopy::makeItem(const std::string& item, const std::string& scratchName,
                            Durability durability) {
    scratch_.emplace(scratchName);
    copyItem(item, scratchName, durability);
}

int UnplacedCopy::place(const std::string& path) {
    return file_ ? file_->place(path) : internal::placeItem(scratch_->path(), path);
}

int UnplacedCopy::replace(const std::string& path) {
    return file_ ? file_->replace(path) : internal::replaceItem(path, scratch_->path());
}

void synchroniseVolumeOf(const std::string& path) {
    const std::string folderPath = internal::folderOf(path);
    const FileDescriptor folder = opened(placeOf(folderPath), O_RDONLY | O_DIRECTORY);
    if (::syncfs(folder.get()) != 0)
        fail("cannot write to the disk", placeOf(path));
}

} // namespace zorvan::files
