#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>

namespace zorvan {

/// A counting semaphore. All of its functions may be called from any thread.
class DispatchSemaphore {
public:
    /// Stops the program when the count is negative.
    /// @{
    static std::shared_ptr<DispatchSemaphore> create(std::int64_t value);
    explicit DispatchSemaphore(std::int64_t value);
    /// @}

    /// Adds one to the count, which lets one waiting thread go on.
    void signal();

    /// Waits until the count is above zero, then takes one from it.
    void wait();

    /// As `wait`, but gives up at the deadline or after the time-out; true when it took one. A
    /// deadline that has passed makes it a try.
    /// @{
    [[nodiscard]] bool wait(std::chrono::steady_clock::time_point deadline);
    [[nodiscard]] bool wait(std::chrono::nanoseconds timeout);
    /// @}

private:
    bool takeAtOnce();

    std::mutex mutex_;
    std::condition_variable raised_;
    std::int64_t count_;
};

} // namespace zorvan
