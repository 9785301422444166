#include <zorvan/platform/foundation/internal/Scratch.h>

#include <zorvan/platform/foundation/UUID.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/placeItem.h>
#include <zorvan/platform/foundation/internal/removeItem.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <utility>

namespace zorvan::internal {

namespace {

constexpr int listFlags = O_RDWR | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

std::string listIn(const std::string& folder) {
    return folder + "/.zorvan-unfinished-" + std::to_string(::geteuid());
}

/// Whether an open file is a list that this user alone could have written.
bool isOwnList(const struct stat& file) noexcept {
    return S_ISREG(file.st_mode) && file.st_uid == ::geteuid() && (file.st_mode & 0022) == 0;
}

/// Whether an open file is what has the name, and such a list.
bool isListAt(const FileDescriptor& file, const std::string& path) noexcept {
    struct stat status {
    }, named{};
    return ::fstat(file.get(), &status) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           status.st_dev == named.st_dev && status.st_ino == named.st_ino && isOwnList(status);
}

bool isUUID(std::string_view text) noexcept {
    constexpr std::string_view shape = "00000000-0000-0000-0000-000000000000";
    return std::equal(text.begin(), text.end(), shape.begin(), shape.end(), [](char c, char s) {
        return s == '-' ? c == s : isDigit(c) || (c >= 'A' && c <= 'F');
    });
}

/// A list that something else has written to must not name what is no scratch place.
bool isScratchName(std::string_view name) noexcept {
    if (name.starts_with('.'))
        name.remove_prefix(1);
    const std::string_view ending = name.substr(std::min<std::size_t>(name.size(), 36));
    return isUUID(name.substr(0, 36)) && (ending.empty() || ending.front() == '.') &&
           ending.find('/') == std::string_view::npos;
}

/// Names end with a NUL, which no name holds.
std::string namesIn(const FileDescriptor& list) {
    constexpr std::size_t longestList = std::size_t{1} << 20; // of 20,000 at work
    std::string names;
    std::array<char, 4096> chunk;
    ssize_t count = 1;
    while (count > 0 && names.size() < longestList) {
        count = ::pread(list.get(), chunk.data(), chunk.size(), static_cast<off_t>(names.size()));
        names.append(chunk.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return names;
}

void removeListed(const FileDescriptor& list, const std::string& folder) {
    const std::string names = namesIn(list);
    for (std::string_view rest = names; rest.find('\0') != std::string_view::npos;) {
        const std::string name(rest.substr(0, rest.find('\0')));
        rest.remove_prefix(name.size() + 1);
        if (isScratchName(name))
            removeItem(folder + '/' + name);
    }
}

/// Unless somebody else is at work in the folder.
void finishList(const FileDescriptor& list, const std::string& folder) noexcept {
    try {
        const std::string path = listIn(folder);
        if (!lockDescriptor(list.get(), LOCK_EX | LOCK_NB) || !isListAt(list, path))
            return;
        removeListed(list, folder);
        ::unlink(path.c_str());
    } catch (const std::exception&) {
        // Out of memory: the next one finishes it.
    }
}

/// Gets the shared lock of a list, or an error number: `EWOULDBLOCK` when another has it. Waits for
/// those who remove what is written down, but not where others may open the list too, who could
/// keep their lock for ever.
int lockOwnList(const FileDescriptor& list) noexcept {
    struct stat status {};
    if (::fstat(list.get(), &status) != 0 || !isOwnList(status))
        return EPERM;
    const bool isPrivate = (status.st_mode & 0077) == 0;
    return lockDescriptor(list.get(), isPrivate ? LOCK_SH : LOCK_SH | LOCK_NB) ? 0 : errno;
}

/// The list of a folder with a shared lock on it; none where that cannot be had.
FileDescriptor joinedList(const std::string& folder) {
    const std::string path = listIn(folder);
    constexpr int tries = 1000; // each one fails only when another process removes the list
    for (int i = 0; i < tries; ++i) {
        removeUnfinished(folder);
        FileDescriptor list(::open(path.c_str(), listFlags | O_CREAT | O_EXCL, 0600));
        const bool isNew(list);
        if (!isNew)
            list = FileDescriptor(::open(path.c_str(), listFlags | O_CREAT, 0600));
        const int error = lockOwnList(list);
        // Where files are open to others whatever mode they are made with, or are not locked,
        // nobody takes it for a list, and so nobody would remove it.
        if (isNew && error != 0 && error != EWOULDBLOCK)
            ::unlink(path.c_str());
        if (error != 0)
            break;
        if (isListAt(list, path))
            return list;
    }
    return {};
}

} // namespace

Scratch::Scratch(std::string path) : path_(std::move(path)), list_(joinedList(folderOf(path_))) {
    if (!list_)
        return;
    // In one step, so that those who write at the same time do not mix their names up. What cannot
    // be written down, on a full disk, stays should the process be killed.
    const char* const name = path_.c_str() + (path_.rfind('/') + 1);
    [[maybe_unused]] const ssize_t written = ::write(list_.get(), name, std::strlen(name) + 1);
}

std::string Scratch::pathBeside(const std::string& item) {
    const std::string folder = folderOf(item);
    return folder + (folder == "/" ? "." : "/.") + makeUUIDString();
}

Scratch::~Scratch() {
    try {
        removeItem(path_);
        if (list_)
            finishList(list_, folderOf(path_));
    } catch (const std::exception&) {
        // Out of memory: the next one to the folder removes it.
    }
}

void removeUnfinished(const std::string& folder) noexcept {
    try {
        const FileDescriptor list(::open(listIn(folder).c_str(), listFlags));
        if (list)
            finishList(list, folder);
    } catch (const std::exception&) {
        // Out of memory: the next one does it.
    }
}

} // namespace zorvan::internal
