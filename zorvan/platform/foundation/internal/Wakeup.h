#pragma once

#include <zorvan/platform/foundation/internal/FileDescriptor.h>

namespace zorvan::internal {

/// Wakes a thread that polls its descriptor, which is readable from `signal` to `clear`.
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
