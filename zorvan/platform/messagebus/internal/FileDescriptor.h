#pragma once

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
    ~FileDescriptor();

    int get() const noexcept { return descriptor_; }
    explicit operator bool() const noexcept { return descriptor_ >= 0; }

private:
    int descriptor_ = -1;
};

/// Wakes a thread that polls its descriptor.
class Wakeup {
public:
    /// Throws `std::system_error` when the process can open no more descriptors.
    Wakeup();

    int descriptor() const noexcept { return event_.get(); }
    void signal() const noexcept;
    void clear() const noexcept;

private:
    FileDescriptor event_;
};

} // namespace zorvan::internal
