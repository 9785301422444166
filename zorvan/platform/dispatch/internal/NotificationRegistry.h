#pragma once

#include <zorvan/platform/dispatch/internal/NotificationObserver.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <span>
#include <unordered_map>
#include <vector>

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
    bool mayConcern(NSNotificationName name) const noexcept;

    void deliver(const Notification& notification);

private:
    using Snapshot = std::vector<ObserverPointer>;
    using SharedSnapshot = std::shared_ptr<const Snapshot>;

    struct Key {
        const std::string* name; // null: every name
        const Sender* sender;    // null: every sender
        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const noexcept;
    };
    struct Channel {
        Key key;
        std::weak_ptr<Sender> sender;
        NotificationObserver::List observers;
        SharedSnapshot snapshot; // null when the list has changed since
        std::optional<std::list<std::unique_ptr<Channel>>::iterator>
            orphaned; // place among orphans
    };
    enum Kind : std::size_t { nameAndSender, nameOnly, senderOnly, everything, kindCount };
    static constexpr std::size_t interestSlots = 1024;
    using Found = std::array<SharedSnapshot, kindCount>;

    static Kind kind(const Key& key) noexcept;
    static std::size_t slot(const std::string* name) noexcept;
    static bool sameOwner(const std::weak_ptr<Sender>& a,
                          const std::shared_ptr<Sender>& b) noexcept;
    static void tellInOrder(std::span<const SharedSnapshot> found,
                            const Notification& notification);

    Channel& channel(const Key& key, const std::shared_ptr<Sender>& sender);
    std::unique_ptr<Channel> takeChannel(Channel& channel);
    std::atomic<std::uint32_t>& interest(const Key& key) noexcept;
    std::size_t find(const Notification& notification, Found& found);
    SharedSnapshot snapshot(const Key& key, const std::shared_ptr<Sender>& sender);

    const std::uint64_t identity_;
    std::mutex mutex_;
    std::unordered_map<Key, std::unique_ptr<Channel>, KeyHash> channels_;
    std::list<std::unique_ptr<Channel>> orphans_; // of gone senders whose address another one took
    std::array<std::size_t, kindCount> channelCount_{};
    std::uint64_t nextNumber_ = 0;

    // Observers by hash of their name, so that a post that concerns nobody need not lock.
    std::array<std::atomic<std::uint32_t>, interestSlots> interest_{};
    std::atomic<std::uint32_t> interestInEveryName_ = 0;
};

} // namespace zorvan
