#pragma once

#include <zorvan/platform/dispatch/internal/NotificationObserver.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan::internal {

/// Whom notifications of one name and sender concern, in the order of addition; never changed. It
/// is lent to posts (`LentPointer`), and goes with the last of them once it is outdated.
class NotificationRecipients {
public:
    using Observers = std::vector<std::shared_ptr<NotificationObserver>>;

    NotificationRecipients(NotificationKey key, Observers observers)
        : key_(std::move(key)), observers_(std::move(observers)) {}
    NotificationRecipients(const NotificationRecipients&) = delete;
    NotificationRecipients& operator=(const NotificationRecipients&) = delete;

    const NotificationKey& key() const noexcept { return key_; }

    void tell(const Notification& notification) const {
        for (const auto& observer : observers_)
            observer->tell(notification);
    }

    void giveBack() noexcept { settle(-1); }
    void drop(std::int64_t lent) noexcept { settle(lent); }

private:
    ~NotificationRecipients() = default;

    void settle(std::int64_t change) noexcept {
        if (owed_.fetch_add(change, std::memory_order_acq_rel) == -change)
            delete this;
    }

    const NotificationKey key_;
    const Observers observers_;
    std::atomic<std::int64_t> owed_ = 0; // less those given back, and once dropped plus those lent
};

} // namespace zorvan::internal
