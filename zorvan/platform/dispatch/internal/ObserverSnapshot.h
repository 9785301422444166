#pragma once

#include <zorvan/platform/dispatch/internal/NotificationObserver.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan::internal {

/// The observers of a channel at one time, in the order of addition, and never changed.
///
/// Posts borrow it under the lock that guards its channel, and give it back without. Borrowing is
/// counted by a plain number and only giving back by an atomic one, which makes a post cheaper than
/// a shared pointer would: it goes when its channel has dropped it and as many have given it back
/// as have borrowed it.
class ObserverSnapshot {
public:
    using Observers = std::vector<std::shared_ptr<NotificationObserver>>;

    ObserverSnapshot(const ObserverSnapshot&) = delete;
    ObserverSnapshot& operator=(const ObserverSnapshot&) = delete;

    struct Drop {
        void operator()(ObserverSnapshot* snapshot) const noexcept {
            const std::int64_t borrowed = snapshot->borrowed_;
            if (snapshot->owed_.fetch_add(borrowed, std::memory_order_acq_rel) == -borrowed)
                delete snapshot;
        }
    };
    /// A channel's hold on its snapshot.
    using Owner = std::unique_ptr<ObserverSnapshot, Drop>;

    static Owner make(Observers observers) {
        return Owner(new ObserverSnapshot(std::move(observers)));
    }

    /// Under the lock, once for each `giveBack`.
    void borrow() noexcept { ++borrowed_; }

    void giveBack() noexcept {
        // Above zero only once dropped.
        if (owed_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

    const Observers& observers() const noexcept { return observers_; }

private:
    explicit ObserverSnapshot(Observers observers) : observers_(std::move(observers)) {}
    ~ObserverSnapshot() = default;

    const Observers observers_;
    std::int64_t borrowed_ = 0;
    std::atomic<std::int64_t> owed_ =
        0; // less those given back, plus, once dropped, those borrowed
};

} // namespace zorvan::internal
