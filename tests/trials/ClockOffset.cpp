#include "ClockOffset.h"

#include <ctime>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

std::time_t ahead = 0;

int realTime(clockid_t clock, timespec* time) noexcept {
    return static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
}

} // namespace

void setClockOffset(std::chrono::seconds offset) noexcept { ahead = offset.count(); }

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const int result = realTime(clock, time);
    if (result == 0 && clock == CLOCK_REALTIME)
        time->tv_sec += ahead;
    return result;
}

int gettimeofday(timeval* time, void*) noexcept {
    timespec now{};
    const int result = clock_gettime(CLOCK_REALTIME, &now);
    *time = {.tv_sec = now.tv_sec, .tv_usec = now.tv_nsec / 1000};
    return result;
}

std::time_t time(std::time_t* result) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return result ? *result = now.tv_sec : now.tv_sec;
}
}
