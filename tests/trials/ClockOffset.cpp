#include "ClockOffset.h"

#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::time_t ahead = 0;

} // namespace

void setClockOffset(std::chrono::seconds offset) noexcept { ahead = offset.count(); }

/// Stands in for the C library's, by which this library and the standard one read the clock.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const auto result = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (result == 0 && clock == CLOCK_REALTIME)
        time->tv_sec += ahead;
    return result;
}
