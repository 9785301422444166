#include <zorvan/platform/dispatch/DispatchSemaphore.h>

#include <zorvan/platform/dispatch/internal/Timer.h>
#include <zorvan/platform/dispatch/internal/WorkerPool.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <string>

namespace zorvan {

using Clock = std::chrono::steady_clock;

std::shared_ptr<DispatchSemaphore> DispatchSemaphore::create(std::int64_t value) {
    return std::make_shared<DispatchSemaphore>(value);
}

DispatchSemaphore::DispatchSemaphore(std::int64_t value) : count_(value) {
    if (value < 0)
        fatalError("A semaphore cannot start with the count " + std::to_string(value) +
                   ", which must be at least 0.");
}

void DispatchSemaphore::signal() {
    const std::lock_guard lock(mutex_);
    ++count_;
    raised_.notify_one();
}

bool DispatchSemaphore::takeAtOnce() {
    const std::lock_guard lock(mutex_);
    if (count_ == 0)
        return false;
    --count_;
    return true;
}

void DispatchSemaphore::wait() {
    if (takeAtOnce())
        return;
    const internal::WorkerPool::Blocked blocked;
    std::unique_lock lock(mutex_);
    raised_.wait(lock, [this] { return count_ > 0; });
    --count_;
}

bool DispatchSemaphore::wait(Clock::time_point deadline) {
    if (takeAtOnce())
        return true;
    if (deadline <= Clock::now())
        return false;
    const internal::WorkerPool::Blocked blocked;
    std::unique_lock lock(mutex_);
    if (!raised_.wait_until(lock, deadline, [this] { return count_ > 0; }))
        return false;
    --count_;
    return true;
}

bool DispatchSemaphore::wait(std::chrono::nanoseconds timeout) {
    return wait(internal::Timer::after(timeout));
}

} // namespace zorvan
