#pragma once

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/dispatch/DispatchSemaphore.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace zorvan {

template <class Value>
class ValueLoader;

namespace internal {

void requireMainThreadForRequest();
void requireBackgroundThreadForWait();

} // namespace internal

/// One requester's claim on the value of a ValueLoader: pending until it is completed by the load
/// or cancelled, whichever comes first on the main thread. Does not keep its loader alive; a
/// pending request is kept alive by it.
template <class Value>
class ValueRequest : public std::enable_shared_from_this<ValueRequest<Value>> {
public:
    /// Its key in the loader's `requests` while pending, else absent. From any thread.
    std::optional<std::int64_t> index() const noexcept {
        const std::int64_t key = index_.load(std::memory_order_acquire);
        return key == noIndex ? std::nullopt : std::optional(key);
    }

    /// Gives the claim up: its completion is dropped without being called, and threads in `wait` go
    /// on. From any thread, as often as one likes; takes effect in the main queue's turn, unless
    /// the request is completed before. Work already begun is not stopped.
    void cancel() {
        if (index())
            DispatchQueue::main()->async([self = this->shared_from_this()] { self->withdraw(); });
    }

    /// Blocks until the request is completed or cancelled, then returns the loader's value: absent
    /// when none is loaded or the loader is gone. Absent at once when the request is not pending.
    /// From any number of background threads, which may resume before the completion has run.
    ///
    /// Stops the program when called on the main thread for a pending request, which only the main
    /// thread could complete.
    std::optional<Value> wait() {
        if (!index())
            return std::nullopt;
        internal::requireBackgroundThreadForWait();
        semaphore_.wait();
        semaphore_.signal(); // for the next thread that waits
        const std::shared_ptr<ValueLoader<Value>> loader = loader_.lock();
        return loader ? loader->value() : std::nullopt;
    }

private:
    friend ValueLoader<Value>;
    static constexpr std::int64_t noIndex = -1;

    ValueRequest(std::weak_ptr<ValueLoader<Value>> loader, std::int64_t index,
                 std::function<void()> completion)
        : index_(index), completion_(std::move(completion)), loader_(std::move(loader)) {}

    /// On the main thread.
    void complete() {
        if (!index())
            return;
        index_.store(noIndex, std::memory_order_release);
        semaphore_.signal();
        const std::function<void()> completion = std::exchange(completion_, nullptr);
        if (completion)
            completion();
    }

    /// On the main thread.
    void withdraw() {
        const std::optional<std::int64_t> key = index();
        if (!key)
            return;
        if (const std::shared_ptr<ValueLoader<Value>> loader = loader_.lock())
            loader->forget(*key);
        index_.store(noIndex, std::memory_order_release);
        completion_ = nullptr;
        semaphore_.signal();
    }

    std::atomic<std::int64_t> index_;
    std::function<void()> completion_;
    DispatchSemaphore semaphore_{0};
    const std::weak_ptr<ValueLoader<Value>> loader_;
};

} // namespace zorvan
