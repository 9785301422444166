#pragma once

#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <utility>

namespace zorvan {

namespace internal {

/// The name and sender of notifications, either of which may be open. The owner tells a sender from
/// one that took its address.
template <class Owner>
struct BasicNotificationKey {
    const std::string* name;                    // null: every name
    const NSNotificationCenter::Sender* sender; // null: every sender
    Owner owner;
};
using NotificationKey = BasicNotificationKey<std::weak_ptr<NSNotificationCenter::Sender>>;
/// To look one up with.
using NotificationKeyView =
    BasicNotificationKey<const std::shared_ptr<NSNotificationCenter::Sender>&>;

inline std::size_t notificationHash(const void* name, const void* sender) noexcept {
    const std::size_t mixed = reinterpret_cast<std::size_t>(name) * 0x9E3779B97F4A7C15ULL ^
                              reinterpret_cast<std::size_t>(sender) * 0xC2B2AE3D27D4EB4FULL;
    return mixed ^ (mixed >> 32);
}

struct NotificationKeyHash {
    using is_transparent = void;
    template <class Key>
    std::size_t operator()(const Key& key) const noexcept {
        return notificationHash(key.name, key.sender);
    }
};

struct NotificationKeyEqual {
    using is_transparent = void;
    template <class A, class B>
    bool operator()(const A& a, const B& b) const noexcept {
        return a.name == b.name && a.sender == b.sender && !a.owner.owner_before(b.owner) &&
               !b.owner.owner_before(a.owner);
    }
};

} // namespace internal

class NotificationObserver : public std::enable_shared_from_this<NotificationObserver> {
public:
    NotificationObserver(std::uint64_t registry, internal::NotificationKey key,
                         std::shared_ptr<NSOperationQueue> queue,
                         NSNotificationCenter::Handler handler)
        : registry(registry), key(std::move(key)), queue_(std::move(queue)),
          handler_(std::move(handler)) {}

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
    const internal::NotificationKey key;

    // Where that registry keeps it, guarded by its lock.
    List::iterator position;
    std::uint64_t number = 0; // ascending in the order of addition

private:
    const std::shared_ptr<NSOperationQueue> queue_;
    const NSNotificationCenter::Handler handler_;
    std::atomic<bool> active_ = true;
};

} // namespace zorvan
