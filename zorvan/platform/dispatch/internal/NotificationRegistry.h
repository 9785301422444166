#pragma once

#include <zorvan/platform/dispatch/internal/LentPointer.h>
#include <zorvan/platform/dispatch/internal/NotificationObserver.h>
#include <zorvan/platform/dispatch/internal/NotificationRecipients.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>

namespace zorvan {

/// The observers of a center, by name and sender.
///
/// Each pair of a name and a sender, either of which may be open, has a channel, and a post
/// concerns at most four of them. Whom it concerns is kept in a place that its name and sender
/// choose, until observers of them come or go, so that the next post like it takes no lock. No
/// block is called, and nothing that a block or a sender holds is released, under the lock.
class NSNotificationCenter::Registry {
public:
    using ObserverPointer = std::shared_ptr<NotificationObserver>;

    Registry();

    std::uint64_t identity() const noexcept { return identity_; }

    void add(const ObserverPointer& observer);
    void remove(const ObserverPointer& observer);

    /// An observer may end the registry.
    void deliver(const Notification& notification) {
        const KeyView key{&notification.name.rawValue(), notification.object.get(),
                          notification.object};
        Loan recipients(place(key).borrow());
        if (!recipients || !KeyEqual{}(recipients->key(), key)) {
            if (!mayConcern(key.name))
                return;
            recipients = find(key);
        }
        recipients->tell(notification);
    }

private:
    using Key = internal::NotificationKey;
    using KeyView = internal::NotificationKeyView;
    using KeyHash = internal::NotificationKeyHash;
    using KeyEqual = internal::NotificationKeyEqual;
    using Recipients = internal::NotificationRecipients;
    using Place = internal::LentPointer<Recipients>;

    struct GiveBack {
        void operator()(Recipients* recipients) const noexcept { recipients->giveBack(); }
    };
    using Loan = std::unique_ptr<Recipients, GiveBack>;

    static constexpr std::size_t interestSlots = 4096;

    static std::size_t slot(const std::string* name) noexcept {
        return internal::notificationHash(name, nullptr) % interestSlots;
    }
    std::atomic<std::uint32_t>& interest(const Key& key) noexcept {
        return key.name ? interest_[slot(key.name)] : interestInEveryName_;
    }
    using Row = std::array<Place, 32>;
    Row& row(const std::string* name) noexcept {
        return places_[internal::notificationHash(name, nullptr) % places_.size()];
    }
    template <class AnyKey>
    Place& place(const AnyKey& key) noexcept {
        return row(key.name)[KeyHash{}(key) / places_.size() % std::tuple_size_v<Row>];
    }
    /// False when nobody can want a notification of that name; says so without a lock.
    bool mayConcern(const std::string* name) const noexcept {
        return interest_[slot(name)].load(std::memory_order_relaxed) != 0 ||
               interestInEveryName_.load(std::memory_order_relaxed) != 0;
    }
    void outdate(const Key& key) noexcept;
    Loan find(const KeyView& key);

    const std::uint64_t identity_;
    std::unordered_map<Key, NotificationObserver::List, KeyHash, KeyEqual> channels_;
    std::uint64_t nextNumber_ = 0;

    // Observers by hash of their name, so that a post that concerns nobody need not lock.
    std::array<std::atomic<std::uint32_t>, interestSlots> interest_{};
    std::atomic<std::uint32_t> interestInEveryName_ = 0;

    // A row for each name. Filled under the lock; cleared after each change, before it is said to
    // be made.
    std::array<Row, 64> places_;
};

} // namespace zorvan
