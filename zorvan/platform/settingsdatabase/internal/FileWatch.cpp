#include <zorvan/platform/settingsdatabase/internal/FileWatch.h>

#include <zorvan/platform/foundation/internal/placeItem.h>
#include <zorvan/platform/foundation/internal/unlessOutOfMemory.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <poll.h>
#include <pthread.h>
#include <sys/inotify.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace zorvan::internal {

namespace {

constexpr std::uint32_t mask = IN_MODIFY | IN_ATTRIB | IN_CLOSE_WRITE | IN_CREATE | IN_MOVED_TO |
                               IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
/// Of the folder around, which others may watch for more.
constexpr std::uint32_t maskAround = IN_CREATE | IN_MOVED_TO | IN_ONLYDIR | IN_MASK_ADD;

/// What is written to the log is seen by others a moment later. Writers show that moment; one that
/// is ended before it does is found out by looking again this long after the last event.
constexpr int lookAgainMilliseconds[] = {2, 8, 25};
constexpr std::size_t looks = std::size(lookAgainMilliseconds);

} // namespace

FileWatch& FileWatch::shared() {
    static FileWatch& watch = *new FileWatch;
    return watch;
}

bool FileWatch::begin() {
    if (events_ >= 0)
        return true;
    events_ = ::inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    if (events_ < 0)
        return false;
    // The thread takes no signals of the application.
    sigset_t all, before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    try {
        std::thread([this] { run(); }).detach();
    } catch (const std::system_error&) {
        ::close(std::exchange(events_, -1));
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return events_ >= 0;
}

FileWatch::Number FileWatch::start(const std::string& path, Handler handler) {
    const std::lock_guard lock(mutex_);
    if (!begin())
        return 0;
    File& file = files_[++last_];
    file.folder = folderOf(path);
    file.name = path.substr(path.rfind('/') + 1);
    file.handler = std::move(handler);
    place(file);
    if (file.watch >= 0)
        return last_;
    files_.erase(last_);
    return 0;
}

void FileWatch::stop(Number number) {
    Handler ended; // released without the lock
    const std::lock_guard lock(mutex_);
    const auto found = files_.find(number);
    if (found == files_.end())
        return;
    const int watches[] = {found->second.watch, found->second.around};
    ended = std::move(found->second.handler);
    files_.erase(found);
    for (const int watch : watches)
        release(watch);
}

void FileWatch::forgetInChild() {
    // The numbers of the parent's watches mean nothing here, and its events are not ours to take.
    if (events_ >= 0)
        ::close(std::exchange(events_, -1));
    files_.clear();
}

/// Watches the folder, or the nearest around it that is there, in which it will come up.
void FileWatch::place(File& file) {
    const int before[] = {file.watch, file.around};
    std::string folder = file.folder;
    for (;;) {
        file.watch = ::inotify_add_watch(events_, folder.c_str(), mask);
        if (file.watch >= 0 || folder == "/")
            break;
        folder = folderOf(folder);
    }
    file.isInFolder = folder == file.folder;
    // While a file in it is open, the system does not tell that the folder was removed.
    file.around =
        file.isInFolder ? ::inotify_add_watch(events_, folderOf(folder).c_str(), maskAround) : -1;
    for (const int watch : before)
        release(watch);
}

void FileWatch::release(int watch) {
    for (const auto& [number, file] : files_)
        if (file.watch == watch || file.around == watch)
            return;
    if (watch >= 0)
        ::inotify_rm_watch(events_, watch);
}

std::optional<bool> FileWatch::isPlacedBy(File& file, int watch, std::uint32_t what,
                                          std::string_view name) {
    if (what & IN_Q_OVERFLOW)
        return true;
    const bool isOtherFolder = file.around == watch && (what & (IN_CREATE | IN_MOVED_TO)) != 0 &&
                               file.folder.ends_with('/' + std::string(name));
    if (file.watch != watch && !isOtherFolder)
        return std::nullopt;
    if (what & (IN_DELETE_SELF | IN_MOVE_SELF))
        ::inotify_rm_watch(events_, watch); // it would go along with the folder
    const bool isGone = (what & (IN_IGNORED | IN_DELETE_SELF | IN_MOVE_SELF)) != 0;
    if (isGone)
        file.watch = -1;
    if (isGone || isOtherFolder || !file.isInFolder) {
        place(file);
        // Between the failure to watch the folder and the watch around it, it may have come.
        if (!file.isInFolder)
            place(file);
        return file.isInFolder ? std::optional(true) : std::nullopt;
    }
    if (name == file.name)
        return (what & (IN_MOVED_TO | IN_CLOSE_WRITE)) != 0;
    return name == file.name + "-wal" ? std::optional(false) : std::nullopt;
}

void FileWatch::handle(std::span<const std::byte> bytes, Calls& calls) {
    const std::lock_guard lock(mutex_);
    while (bytes.size() >= sizeof(inotify_event)) {
        inotify_event event;
        std::memcpy(&event, bytes.data(), sizeof event);
        const char* const text = reinterpret_cast<const char*>(bytes.data() + sizeof event);
        const std::string_view name(text, ::strnlen(text, event.len));
        for (auto& [number, file] : files_) {
            const std::optional<bool> isPlaced = isPlacedBy(file, event.wd, event.mask, name);
            if (!isPlaced)
                continue;
            Call& call = calls[number];
            call.handler = file.handler;
            call.isPlaced = call.isPlaced || *isPlaced;
        }
        bytes = bytes.subspan(sizeof event + event.len);
    }
}

void FileWatch::run() {
    std::array<std::byte, 1 << 14> buffer;
    Calls recent; // to be made again
    std::size_t look = looks;
    const int events = events_;
    for (;;) {
        pollfd place{events, POLLIN, 0};
        const int ready = ::poll(&place, 1, look < looks ? lookAgainMilliseconds[look] : -1);
        if (ready < 0 && errno != EINTR)
            return;
        Calls calls;
        if (ready > 0) {
            const ssize_t size = ::read(events, buffer.data(), buffer.size());
            unlessOutOfMemory([&] {
                if (size > 0)
                    handle(std::span(buffer).first(static_cast<std::size_t>(size)), calls);
                recent.insert(calls.begin(), calls.end());
            });
            if (!calls.empty())
                look = 0;
        } else if (ready == 0) {
            ++look;
            calls.swap(recent);
        }
        for (const auto& each : calls) {
            const Call& call = each.second;
            unlessOutOfMemory([&] { call.handler(call.isPlaced); }); // else the next look finds it
        }
        if (ready == 0 && look < looks)
            recent.swap(calls);
    }
}

} // namespace zorvan::internal
