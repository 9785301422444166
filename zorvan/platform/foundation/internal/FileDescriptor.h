#pragma once

#include <cerrno>
#include <cstddef>
#include <span>
#include <string>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

namespace zorvan::internal {

/// A file descriptor, owned; -1 when there is none.
class FileDescriptor {
public:
    FileDescriptor() noexcept = default;
    explicit FileDescriptor(int descriptor) noexcept : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~FileDescriptor() {
        if (descriptor_ >= 0)
            ::close(descriptor_);
    }

    int get() const noexcept { return descriptor_; }
    /// Gives the descriptor away.
    int release() noexcept { return std::exchange(descriptor_, -1); }
    explicit operator bool() const noexcept { return descriptor_ >= 0; }
    /// Leads to what is open, whatever name that has by now.
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_ = -1;
};

/// What a system call gives that is made again for as long as signals interrupt it.
template <class Call>
auto uninterrupted(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

/// False when the lock cannot be had.
inline bool lockDescriptor(int descriptor, int operation) noexcept {
    return uninterrupted([&] { return ::flock(descriptor, operation); }) == 0;
}

/// Writes all of the bytes. An error number, or 0.
inline int writeAll(int descriptor, std::span<const std::byte> bytes) noexcept {
    while (!bytes.empty()) {
        const ssize_t count =
            uninterrupted([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (count < 0)
            return errno;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return 0;
}

} // namespace zorvan::internal
