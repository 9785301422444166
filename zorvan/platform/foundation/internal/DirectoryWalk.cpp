#include <zorvan/platform/foundation/internal/DirectoryWalk.h>

#include <zorvan/platform/foundation/internal/hasNUL.h>
#include <zorvan/platform/foundation/internal/openByPath.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace zorvan::internal {

namespace {

constexpr std::size_t bufferSize = 32768;
constexpr std::size_t maximumOpenLevels = 32;
constexpr int openFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK;

// A record of the kernel: inode (8 bytes), offset (8), length (2), kind (1), name with its NUL.
constexpr std::size_t lengthOffset = 16;
constexpr std::size_t kindOffset = 18;
constexpr std::size_t nameOffset = 19;

} // namespace

std::unique_ptr<DirectoryWalk> DirectoryWalk::open(std::string path, Visits visits) {
    FileDescriptor descriptor(::open(systemPath(path), openFlags));
    if (!descriptor)
        return nullptr;
    std::unique_ptr<DirectoryWalk> walk(new DirectoryWalk(visits));
    walk->path_ = path == "/" ? std::string() : std::move(path);
    walk->nameStart_ = walk->path_.size();
    walk->enter(std::move(descriptor));
    return walk;
}

bool DirectoryWalk::advance() {
    isLeaving_ = false;
    if (std::exchange(descendIntoEntry_, false))
        enterEntry();
    while (!levels_.empty()) {
        if (takeRecord(levels_.back())) {
            entryLevel_ = levels_.size();
            descendIntoEntry_ = kind_ == EntryKind::directory;
            return true;
        }
        leave();
        if (visits_ == Visits::around && !levels_.empty()) {
            entryLevel_ = levels_.size();
            isLeaving_ = true;
            return true;
        }
    }
    return false;
}

/// Makes the next record the current entry; false when the directory has no more.
bool DirectoryWalk::takeRecord(Level& level) {
    for (;;) {
        if (level.position >= level.end && !fill(level))
            return false;
        const char* record = level.records.data() + level.position;
        std::uint16_t length = 0;
        std::memcpy(&length, record + lengthOffset, sizeof length);
        level.position += length;
        const std::string_view name(record + nameOffset);
        if (name == "." || name == "..")
            continue;

        path_.resize(level.pathLength);
        path_ += '/';
        nameStart_ = path_.size();
        path_ += name;
        switch (static_cast<unsigned char>(record[kindOffset])) {
        case DT_DIR:
            kind_ = EntryKind::directory;
            break;
        case DT_LNK:
            kind_ = EntryKind::link;
            break;
        case DT_UNKNOWN:
            kind_ = kindOnDisk();
            break;
        default:
            kind_ = EntryKind::file;
        }
        return true;
    }
}

/// Reads on into the buffer, in place of the records that were taken. False at the end; a directory
/// that fails to be read ends there.
bool DirectoryWalk::fill(Level& level) {
    level.position = level.end = 0;
    if (level.isComplete || !level.descriptor)
        return false;
    if (level.records.size() < bufferSize)
        level.records.resize(bufferSize);
    const long count = ::syscall(SYS_getdents64, level.descriptor.get(), level.records.data(),
                                 level.records.size());
    level.isComplete = count <= 0;
    if (count < 0)
        noteError(errno);
    level.end = level.isComplete ? 0 : static_cast<std::size_t>(count);
    return !level.isComplete;
}

EntryKind DirectoryWalk::kindOnDisk() const {
    struct stat status {};
    if (::fstatat(folder(), name().data(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return EntryKind::file;
    return S_ISDIR(status.st_mode)   ? EntryKind::directory
           : S_ISLNK(status.st_mode) ? EntryKind::link
                                     : EntryKind::file;
}

void DirectoryWalk::enterEntry() {
    if (levels_.size() - firstOpenLevel_ >= maximumOpenLevels)
        giveUpOldestDescriptor();
    if (FileDescriptor descriptor = openEntry())
        enter(std::move(descriptor));
    else
        noteError(errno);
}

FileDescriptor DirectoryWalk::openEntry() {
    for (;;) {
        FileDescriptor descriptor(::openat(folder(), name().data(), openFlags));
        const bool isShort = !descriptor && (errno == EMFILE || errno == ENFILE);
        if (!isShort || !giveUpOldestDescriptor())
            return descriptor;
    }
}

void DirectoryWalk::enter(FileDescriptor descriptor) {
    Level& level = levels_.emplace_back();
    level.descriptor = std::move(descriptor);
    level.pathLength = path_.size();
    if (!spareBuffers_.empty()) {
        level.records = std::move(spareBuffers_.back());
        spareBuffers_.pop_back();
    }
}

/// Goes back to the directory above, of which the one that was left is the current entry then.
void DirectoryWalk::leave() {
    const FileDescriptor child = std::move(levels_.back().descriptor);
    path_.resize(levels_.back().pathLength);
    kind_ = EntryKind::directory;
    if (spareBuffers_.size() < maximumOpenLevels)
        spareBuffers_.push_back(std::move(levels_.back().records));
    levels_.pop_back();
    if (!levels_.empty()) {
        nameStart_ = levels_.back().pathLength + 1;
        if (!levels_.back().descriptor)
            reopen(levels_.back(), child);
    }
}

void DirectoryWalk::noteError(int error) noexcept {
    if (error_ == 0)
        error_ = error;
}

/// Frees the descriptor of the topmost level that has one, except the current level's.
bool DirectoryWalk::giveUpOldestDescriptor() {
    if (firstOpenLevel_ + 1 >= levels_.size())
        return false;
    Level& level = levels_[firstOpenLevel_];
    struct stat status {};
    if (::fstat(level.descriptor.get(), &status) != 0)
        return false;
    readRest(level);
    level.device = status.st_dev;
    level.inode = status.st_ino;
    level.descriptor = FileDescriptor();
    ++firstOpenLevel_;
    return true;
}

/// Takes what is left of a directory into memory.
void DirectoryWalk::readRest(Level& level) {
    std::vector<char> rest;
    do
        rest.insert(rest.end(), level.records.begin() + static_cast<std::ptrdiff_t>(level.position),
                    level.records.begin() + static_cast<std::ptrdiff_t>(level.end));
    while (fill(level));
    level.position = 0;
    level.end = rest.size();
    level.records = std::move(rest);
}

/// Opens a level again, through the directory below it, which was opened from it. Should that have
/// been moved meanwhile, by its path. When neither leads there, its remaining entries are still
/// told, but not entered.
void DirectoryWalk::reopen(Level& level, const FileDescriptor& child) {
    firstOpenLevel_ = levels_.size() - 1;
    const std::string path = level.pathLength == 0 ? "/" : path_.substr(0, level.pathLength);
    for (const bool isThroughChild : {true, false}) {
        FileDescriptor descriptor(isThroughChild ? ::openat(child.get(), "..", openFlags)
                                                 : openByPath(AT_FDCWD, path, openFlags));
        struct stat status {};
        if (::fstat(descriptor.get(), &status) == 0 && status.st_dev == level.device &&
            status.st_ino == level.inode) {
            level.descriptor = std::move(descriptor);
            return;
        }
    }
    noteError(ESTALE);
}

} // namespace zorvan::internal
