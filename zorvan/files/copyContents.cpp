#include <zorvan/files/internal/CopyItem.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <limits>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <vector>

namespace zorvan::files {

namespace {

constexpr std::size_t bufferSize = std::size_t{1} << 20;
// Small enough for writing to the disk to begin early, large enough for no call to count.
constexpr off_t kernelStep = off_t{32} << 20;

struct Progress {
    off_t reached = 0;
    int error = 0;
};

/// Copies through memory, up to `end` or the end of the file.
Progress copyThroughMemory(int from, int to, off_t position, off_t end) {
    std::vector<std::byte> buffer(bufferSize);
    while (position < end) {
        const auto wanted = static_cast<std::size_t>(std::min<off_t>(end - position, bufferSize));
        const ssize_t count =
            internal::uninterrupted([&] { return ::pread(from, buffer.data(), wanted, position); });
        if (count <= 0)
            return {position, count < 0 ? errno : 0};
        for (ssize_t written = 0; written < count;) {
            const ssize_t step = internal::uninterrupted([&] {
                return ::pwrite(to, buffer.data() + written,
                                static_cast<std::size_t>(count - written), position + written);
            });
            if (step < 0)
                return {position, errno};
            written += step;
        }
        position += count;
    }
    return {position, 0};
}

bool isRefusal(int error) {
    return error == EXDEV || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP ||
           error == EPERM || error == EBADF;
}

/// Copies from `position` to `end`, as far as the file reaches.
Progress copyRange(int from, int to, off_t position, off_t end, bool startsWriting) {
    while (position < end) {
        off_t source = position;
        off_t target = position;
        const auto wanted = static_cast<std::size_t>(std::min(end - position, kernelStep));
        const ssize_t count = internal::uninterrupted(
            [&] { return ::copy_file_range(from, &source, to, &target, wanted, 0); });
        // Some file systems tell an end where there is none.
        if (count == 0 || (count < 0 && isRefusal(errno)))
            return copyThroughMemory(from, to, position, end);
        if (count < 0)
            return {position, errno};
        if (startsWriting)
            ::sync_file_range(to, position, count, SYNC_FILE_RANGE_WRITE);
        position += count;
    }
    return {position, 0};
}

/// Copies the parts of a file with holes that are not holes.
Progress copyParts(int from, int to, off_t size, bool startsWriting) {
    off_t position = 0;
    while (position < size) {
        const off_t start = ::lseek(from, position, SEEK_DATA);
        if (start < 0 && errno == ENXIO)
            return {size, 0}; // the rest is a hole
        if (start < 0)
            return copyRange(from, to, position, size, startsWriting);
        const off_t hole = ::lseek(from, start, SEEK_HOLE);
        const off_t end = hole < 0 ? size : std::min(hole, size);
        const Progress progress = copyRange(from, to, start, end, startsWriting);
        if (progress.error != 0 || progress.reached < end)
            return progress;
        position = end;
    }
    return {size, 0};
}

} // namespace

int copyContents(int from, const struct stat& status, int to, bool startsWriting) {
    if (::ioctl(to, FICLONE, from) == 0)
        return 0;
    // The kernel's own files tell no size.
    if (status.st_size == 0)
        return copyThroughMemory(from, to, 0, std::numeric_limits<off_t>::max()).error;
    const bool hasHoles = off_t{status.st_blocks} * 512 < status.st_size;
    const Progress progress = hasHoles ? copyParts(from, to, status.st_size, startsWriting)
                                       : copyRange(from, to, 0, status.st_size, startsWriting);
    if (progress.error != 0)
        return progress.error;
    return hasHoles && ::ftruncate(to, progress.reached) != 0 ? errno : 0;
}

} // namespace zorvan::files
