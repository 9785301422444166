#include <zorvan/platform/dispatch/internal/Timer.h>

#include <algorithm>
#include <thread>

namespace zorvan::internal {

Timer& Timer::shared() {
    static Timer* const timer = new Timer;
    return *timer;
}

Timer::Clock::time_point Timer::after(std::chrono::nanoseconds delay) noexcept {
    const auto now = Clock::now();
    const auto positive = std::max(delay, std::chrono::nanoseconds::zero());
    return positive > Clock::time_point::max() - now ? Clock::time_point::max() : now + positive;
}

void Timer::schedule(Clock::time_point deadline, Block block) {
    const std::lock_guard lock(mutex_);
    if (!started_) {
        std::thread([this] { run(); }).detach();
        started_ = true;
    }
    const auto placed = blocks_.emplace(deadline, std::move(block));
    if (placed == blocks_.begin())
        changed_.notify_one();
}

void Timer::run() {
    // A wait until the end of time overflows in some C libraries.
    constexpr auto longestWait = std::chrono::hours(1);
    std::unique_lock lock(mutex_);
    for (;;) {
        const auto now = Clock::now();
        const auto next = blocks_.begin();
        if (next == blocks_.end()) {
            changed_.wait(lock);
        } else if (next->first > now) {
            changed_.wait_until(lock, std::min(next->first, now + longestWait));
        } else {
            Block block = std::move(next->second);
            blocks_.erase(next);
            lock.unlock();
            block();
            block = nullptr;
            lock.lock();
        }
    }
}

} // namespace zorvan::internal
