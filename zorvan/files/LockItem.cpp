#include <zorvan/files/internal/LockItem.h>

#include <zorvan/platform/foundation/internal/hasNUL.h>
#include <zorvan/platform/foundation/internal/openForReading.h>

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <vector>

namespace zorvan::files {

using internal::FileDescriptor, internal::lockDescriptor;

namespace {

bool isSame(const struct stat& a, const struct stat& b) noexcept {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

struct Reading {
    struct stat item;
    int descriptor;
};

/// What this thread has the shared lock of.
thread_local std::vector<Reading> readings;

const Reading* readingOf(const struct stat& item) noexcept {
    const auto found = std::find_if(readings.begin(), readings.end(), [&](const Reading& reading) {
        return isSame(reading.item, item);
    });
    return found == readings.end() ? nullptr : &*found;
}

/// Another item may have taken the name during a wait.
bool isStillNamed(const struct stat& item, const std::string& path, int flags) noexcept {
    struct stat named {};
    return ::fstatat(AT_FDCWD, path.c_str(), &named, flags) == 0 && isSame(item, named);
}

} // namespace

FileDescriptor lockForReading(const std::string& path) {
    for (;;) {
        FileDescriptor item = internal::openForReading(AT_FDCWD, internal::systemPath(path));
        struct stat status {};
        if (!item || ::fstat(item.get(), &status) != 0)
            return {};
        if (readingOf(status)) // which ends after this one
            return item;
        if (!lockDescriptor(item.get(), LOCK_SH))
            return {};
        if (isStillNamed(status, path, 0)) {
            readings.push_back({status, item.get()});
            return item;
        }
    }
}

void unlockAfterReading(FileDescriptor item) noexcept {
    std::erase_if(readings,
                  [&](const Reading& reading) { return reading.descriptor == item.get(); });
}

LockForReplacing::LockForReplacing(const std::string& path) {
    for (;;) {
        FileDescriptor item = internal::openForReading(AT_FDCWD, path.c_str(), O_NOFOLLOW);
        struct stat status {};
        if (!item || ::fstat(item.get(), &status) != 0)
            return;
        const Reading* const reading = readingOf(status);
        const int locked = reading ? reading->descriptor : item.get();
        if (!lockDescriptor(locked, LOCK_EX))
            return;
        if (isStillNamed(status, path, AT_SYMLINK_NOFOLLOW)) {
            own_ = reading ? locked : -1;
            item_ = std::move(item);
            return;
        }
        if (reading)
            lockDescriptor(locked, LOCK_SH);
    }
}

LockForReplacing::~LockForReplacing() {
    if (own_ >= 0)
        lockDescriptor(own_, LOCK_SH);
}

} // namespace zorvan::files
