#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace zorvan::internal {

/// Wakes a thread that polls its descriptor, which is readable from `signal` to `clear`.
class Wakeup {
public:
    /// Throws `std::system_error` when the process can open no more descriptors.
    Wakeup() : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (!event_)
            throw std::system_error(errno, std::generic_category(), "eventfd");
    }

    int descriptor() const noexcept { return event_.get(); }
    void signal() const noexcept { ::eventfd_write(event_.get(), 1); }
    void clear() const noexcept {
        eventfd_t count;
        ::eventfd_read(event_.get(), &count);
    }

    /// In a process that was forked: what happens here is none of the parent's any more.
    void part() const noexcept {
        if (const FileDescriptor own{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)})
            ::dup3(own.get(), event_.get(), O_CLOEXEC);
    }

private:
    FileDescriptor event_;
};

} // namespace zorvan::internal
