#include <zorvan/platform/foundation/internal/openForReading.h>

#include <cerrno>
#include <fcntl.h>
#include <string>

namespace zorvan::internal {

namespace {

constexpr int readFlags = O_RDONLY | O_NOCTTY | O_CLOEXEC;

FileDescriptor ifRegular(FileDescriptor file, struct stat& status) noexcept {
    if (!file || ::fstat(file.get(), &status) != 0)
        return {};
    if (S_ISREG(status.st_mode))
        return file;
    errno = EINVAL;
    return {};
}

/// Waits for what is surely a file: by its descriptor, for a pipe may have its name by now.
FileDescriptor openLeased(int folder, const char* name, int flags) {
    struct stat status {};
    const FileDescriptor item =
        ifRegular(FileDescriptor(::openat(folder, name, O_PATH | O_CLOEXEC | flags)), status);
    if (!item)
        return {};
    const std::string path = item.path();
    return FileDescriptor(uninterrupted([&] { return ::open(path.c_str(), readFlags); }));
}

} // namespace

FileDescriptor openForReading(int folder, const char* name, int flags) {
    FileDescriptor item(::openat(folder, name, readFlags | O_NONBLOCK | flags));
    return !item && errno == EWOULDBLOCK ? openLeased(folder, name, flags) : std::move(item);
}

FileDescriptor openRegularFile(int folder, const char* name, struct stat& status, int flags) {
    return ifRegular(openForReading(folder, name, flags), status);
}

} // namespace zorvan::internal
