#pragma once

#include <zorvan/platform/dispatch/internal/ChainedTable.h>
#include <zorvan/platform/dispatch/internal/NotificationObserver.h>
#include <zorvan/platform/dispatch/internal/ObserverSnapshot.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>

namespace zorvan {

/// The observers of a center, by name and sender.
///
/// Each pair of a name and a sender, either of which may be open, has a channel: a list that
/// changes and, once posted to, an immutable copy of it that posts walk through outside the lock. A
/// post concerns at most four channels. No block is called, and nothing that a block holds is
/// released, under the lock.
class NSNotificationCenter::Registry {
public:
    using ObserverPointer = std::shared_ptr<NotificationObserver>;

    Registry();

    std::uint64_t identity() const noexcept { return identity_; }

    void add(const ObserverPointer& observer, std::optional<NSNotificationName> name,
             const std::shared_ptr<Sender>& sender);
    void remove(const ObserverPointer& observer);

    /// False when nobody can want a notification of that name; says so without a lock.
    bool mayConcern(NSNotificationName name) const noexcept {
        return interest_[slot(&name.rawValue())].load(std::memory_order_relaxed) != 0 ||
               interestInEveryName_.load(std::memory_order_relaxed) != 0;
    }

    void deliver(const Notification& notification);

private:
    using Snapshot = internal::ObserverSnapshot;

    struct Key {
        const std::string* name; // null: every name
        const Sender* sender;    // null: every sender
        bool operator==(const Key&) const = default;
    };
    struct Channel {
        Key key;
        std::size_t hash;
        std::weak_ptr<Sender> sender;
        NotificationObserver::List observers;
        Snapshot::Owner snapshot; // null when the list has changed since
        std::optional<std::list<std::unique_ptr<Channel>>::iterator>
            orphaned;                  // place among orphans
        std::unique_ptr<Channel> next; // in the table
    };
    enum Kind : std::size_t { nameAndSender, nameOnly, senderOnly, everything, kindCount };
    static constexpr std::size_t interestSlots = 4096;

    /// What one post has borrowed.
    class Found {
    public:
        Found() noexcept {} // leaves the places as they are: all but one are seldom needed
        Found(const Found&) = delete;
        Found& operator=(const Found&) = delete;
        ~Found() {
            for (Snapshot* const snapshot : snapshots())
                snapshot->giveBack();
        }

        void borrow(Snapshot& snapshot) noexcept {
            snapshot.borrow();
            snapshots_[count_++] = &snapshot;
        }
        std::span<Snapshot* const> snapshots() const noexcept {
            return {snapshots_.data(), count_};
        }

    private:
        std::array<Snapshot*, kindCount> snapshots_;
        std::size_t count_ = 0;
    };

    static Kind kind(const Key& key) noexcept;
    static std::size_t hash(Key key) noexcept {
        const std::size_t mixed = reinterpret_cast<std::size_t>(key.name) * 0x9E3779B97F4A7C15ULL ^
                                  reinterpret_cast<std::size_t>(key.sender) * 0xC2B2AE3D27D4EB4FULL;
        return mixed ^ (mixed >> 32);
    }
    static std::size_t slot(const std::string* name) noexcept {
        return hash({name, nullptr}) % interestSlots;
    }
    static bool sameOwner(const std::weak_ptr<Sender>& a,
                          const std::shared_ptr<Sender>& b) noexcept;
    static void tellInOrder(std::span<Snapshot* const> found, const Notification& notification);

    Channel& channel(const Key& key, const std::shared_ptr<Sender>& sender);
    std::unique_ptr<Channel> takeChannel(Channel& channel);
    std::atomic<std::uint32_t>& interest(const Key& key) noexcept;
    void find(const Notification& notification, Found& found);
    void borrow(Key key, const std::shared_ptr<Sender>& sender, Found& found);

    const std::uint64_t identity_;
    std::mutex mutex_;
    ChainedTable<Channel> channels_;
    std::list<std::unique_ptr<Channel>> orphans_; // of gone senders whose address another one took
    std::array<std::size_t, kindCount> channelCount_{};
    std::uint64_t nextNumber_ = 0;

    // Observers by hash of their name, so that a post that concerns nobody need not lock.
    std::array<std::atomic<std::uint32_t>, interestSlots> interest_{};
    std::atomic<std::uint32_t> interestInEveryName_ = 0;
};

} // namespace zorvan
