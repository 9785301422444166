#pragma once

#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <atomic>
#include <cstdint>
#include <list>
#include <utility>

namespace zorvan {

class NotificationObserver : public std::enable_shared_from_this<NotificationObserver> {
public:
    NotificationObserver(std::uint64_t registry, std::shared_ptr<NSOperationQueue> queue,
                         NSNotificationCenter::Handler handler)
        : registry(registry), queue_(std::move(queue)), handler_(std::move(handler)) {}

    void tell(const Notification& notification) const {
        if (!active_.load(std::memory_order_acquire))
            return;
        if (!queue_)
            return handler_(notification);
        queue_->addOperation([self = shared_from_this(), notification] {
            if (self->active_.load(std::memory_order_acquire))
                self->handler_(notification);
        });
    }

    /// True for the first call.
    bool deactivate() noexcept { return active_.exchange(false, std::memory_order_acq_rel); }

    using List = std::list<std::shared_ptr<NotificationObserver>>;

    /// The registry it belongs to, by a number that no other one ever has.
    const std::uint64_t registry;

    // Where that registry keeps it, guarded by its lock.
    void* home = nullptr;
    List::iterator position;
    std::uint64_t number = 0; // ascending in the order of addition

private:
    const std::shared_ptr<NSOperationQueue> queue_;
    const NSNotificationCenter::Handler handler_;
    std::atomic<bool> active_ = true;
};

} // namespace zorvan
