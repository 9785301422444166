#pragma once

#include <cerrno>
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

private:
    int descriptor_ = -1;
};

/// `flock`, begun again after signals. False when the lock cannot be had.
inline bool lockDescriptor(int descriptor, int operation) noexcept {
    int result = 0;
    do
        result = ::flock(descriptor, operation);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

} // namespace zorvan::internal
