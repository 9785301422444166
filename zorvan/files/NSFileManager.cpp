#include <zorvan/files/NSFileManager.h>

#include <zorvan/files/internal/CopyItem.h>
#include <zorvan/files/internal/LockItem.h>
#include <zorvan/files/internal/filePath.h>
#include <zorvan/platform/archives/ZipArchive.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/placeItem.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>

namespace zorvan {

using namespace files;

const std::shared_ptr<NSFileManager>& NSFileManager::defaultManager() {
    static const std::shared_ptr<NSFileManager> manager(new NSFileManager);
    return manager;
}

NSFileManager::Content NSFileManager::contentExists(const URL& url) const {
    struct stat status {};
    if (!url.isFileURL() || ::stat(internal::systemPath(url.path()), &status) != 0)
        return {};
    return {.exist = true, .isDir = S_ISDIR(status.st_mode)};
}

namespace {

/// What the item itself is asked for; absent when it does not tell all of it.
std::optional<struct statx> attributes(const URL& url, unsigned mask) {
    struct statx status {};
    if (!url.isFileURL() ||
        ::statx(AT_FDCWD, internal::systemPath(url.path()), AT_SYMLINK_NOFOLLOW, mask, &status) !=
            0 ||
        (status.stx_mask & mask) != mask)
        return std::nullopt;
    return status;
}

/// The nearest moment there is: file systems keep dates that lie further off.
Date dateOf(const statx_timestamp& stamp) {
    using std::chrono::floor, std::chrono::seconds;
    const auto first = floor<seconds>(Date::min().time_since_epoch()).count() + 1;
    const auto last = floor<seconds>(Date::max().time_since_epoch()).count() - 1;
    return Date(std::chrono::duration_cast<Date::duration>(
        seconds(std::clamp<std::int64_t>(stamp.tv_sec, first, last)) +
        std::chrono::nanoseconds(stamp.tv_nsec)));
}

} // namespace

std::optional<Date> NSFileManager::modifyDateForFile(const URL& url) const {
    const auto status = attributes(url, STATX_MTIME);
    return status ? std::optional(dateOf(status->stx_mtime)) : std::nullopt;
}

std::optional<Date> NSFileManager::createDateForFile(const URL& url) const {
    const auto status = attributes(url, STATX_BTIME);
    return status ? std::optional(dateOf(status->stx_btime)) : std::nullopt;
}

std::optional<std::int64_t> NSFileManager::sizeInMoOfItem(const URL& url) const {
    const auto status = attributes(url, STATX_SIZE);
    return status ? std::optional(static_cast<std::int64_t>(status->stx_size >> 10)) : std::nullopt;
}

namespace {

bool isOnOneVolume(const std::string& folder, const std::string& other) {
    struct stat a {
    }, b{};
    return ::stat(folder.c_str(), &a) == 0 && ::stat(other.c_str(), &b) == 0 &&
           a.st_dev == b.st_dev;
}

void placeCopy(const std::string& source, const std::string& destination) {
    UnplacedCopy copy(source, internal::Scratch::pathBeside(destination),
                      Durability::none); // nothing is at risk
    if (const int error = copy.place(destination))
        throwFileError("cannot copy to", destination, error);
}

/// Makes room for what takes the place of a file: memory that is free already costs less than half
/// of what the kernel needs to find fresh.
void giveUpCache(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return;
    const internal::FileDescriptor file(
        ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_DONTNEED);
}

int replaceUnread(const std::string& destination, UnplacedCopy& copy) {
    const LockForReplacing lock(destination);
    return copy.replace(destination);
}

/// The replacement is made in the folder for temporary files. From there it can be moved into place
/// in one step only on the same volume, and only by who may write the folders that move; else a
/// second copy is made beside the destination.
void replaceWithCopy(const std::string& source, const std::string& destination,
                     const std::string& temporary) {
    giveUpCache(destination);
    const bool isNear =
        isOnOneVolume(internal::folderOf(destination), internal::folderOf(temporary)) &&
        !temporary.starts_with(destination + '/');
    UnplacedCopy copy(source, temporary, isNear ? Durability::onDisk : Durability::none);
    int error = isNear ? replaceUnread(destination, copy) : EXDEV;
    if (error == EXDEV || error == EACCES) {
        UnplacedCopy second(copy, internal::Scratch::pathBeside(destination), Durability::onDisk);
        error = replaceUnread(destination, second);
    }
    if (error != 0)
        throwFileError("cannot replace", destination, error);
}

/// An extension that leaves no room for the rest of the name is left out.
std::string temporaryPathFor(const URL& source) {
    const NSFileManager& manager = *NSFileManager::defaultManager();
    const URL url = manager.temporaryURL({.for_ = source});
    const bool fits = url.lastPathComponent().size() <= NAME_MAX;
    return fits ? url.path() : manager.temporaryURL().path();
}

} // namespace

void NSFileManager::overwritingCopy(const URL& source, const URL& destination) const {
    const std::string& from = filePath(source);
    const std::string& to = filePath(destination);
    if (isTaken(to))
        replaceWithCopy(from, to, temporaryPathFor(source));
    else
        placeCopy(from, to);
}

std::optional<Data> NSFileManager::zipItems(const std::vector<URL>& urls) const {
    const URL folder = temporaryURL();
    const internal::Scratch scratch(folder.path());
    try {
        if (makePrivateFolder(folder.path()) != 0)
            return std::nullopt;
        for (const URL& url : urls) {
            if (filePath(url) == "/")
                return std::nullopt;
            const URL copy = availableItemURL(url.lastPathComponent(), folder);
            copyItem(url.path(), copy.path(), Durability::none);
        }
        return zipArchiveOfFolder(folder.path());
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::shared_ptr<NSDirectoryEnumerator>
NSFileManager::enumerator(const URL& url, NSDirectoryEnumerationOptions options) const {
    return NSDirectoryEnumerator::create(url, options);
}

std::vector<URL> NSFileManager::searchFiles(const std::vector<URL>& urls,
                                            Recursive argument) const {
    using Options = NSDirectoryEnumerationOptions;
    const Options options =
        Options::skipsHiddenFiles | Options::skipsPackageDescendants |
        (argument.recursive ? Options::none : Options::skipsSubdirectoryDescendants);
    std::vector<URL> found;
    for (const URL& url : urls) {
        const URL resolved = url.resolvingSymlinksInPath();
        const Content content = contentExists(resolved);
        if (content.exist && !content.isDir)
            found.push_back(resolved);
        else if (const auto entries = enumerator(resolved, options))
            while (std::optional<URL> entry = entries->nextObject())
                found.push_back(std::move(*entry));
    }
    return found;
}

} // namespace zorvan
