#pragma once

#include <chrono>

#include <time.h>

namespace zorvan::internal {

/// What one of the system's clocks shows.
inline std::chrono::nanoseconds timeOf(clockid_t clock) noexcept {
    timespec time{};
    ::clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace zorvan::internal
