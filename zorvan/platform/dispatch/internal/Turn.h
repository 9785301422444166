#pragma once

#include <zorvan/platform/dispatch/internal/WorkerPool.h>

#include <condition_variable>
#include <mutex>

namespace zorvan::internal {

/// Lets one thread wait until another says it may go on, once.
class Turn {
public:
    void give() {
        // Notified under the lock: the waiting thread destroys the turn as soon as it can take it.
        const std::lock_guard lock(mutex_);
        given_ = true;
        changed_.notify_one();
    }

    void wait() {
        const WorkerPool::Blocked blocked;
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return given_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool given_ = false;
};

} // namespace zorvan::internal
