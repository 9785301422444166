#pragma once

#include <zorvan/platform/dispatch/Block.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>

namespace zorvan::internal {

/// Runs short blocks at given times, one after the other, on a thread of its own that starts with
/// the first of them. Never destroyed.
class Timer {
public:
    using Clock = std::chrono::steady_clock;

    static Timer& shared();

    /// The moment after a delay, at the end of time at the latest and now at the earliest.
    static Clock::time_point after(std::chrono::nanoseconds delay) noexcept;

    /// Blocks with the same deadline run in the order in which they were scheduled.
    void schedule(Clock::time_point deadline, Block block);

private:
    Timer() = default;
    void run();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::multimap<Clock::time_point, Block> blocks_;
    bool started_ = false;
};

} // namespace zorvan::internal
