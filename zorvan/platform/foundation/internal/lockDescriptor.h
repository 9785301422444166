#pragma once

#include <cerrno>
#include <sys/file.h>

namespace zorvan::internal {

/// `flock`, begun again after signals. False when the lock cannot be had.
inline bool lockDescriptor(int descriptor, int operation) noexcept {
    int result = 0;
    do
        result = ::flock(descriptor, operation);
    while (result != 0 && errno == EINTR);
    return result == 0;
}

} // namespace zorvan::internal
