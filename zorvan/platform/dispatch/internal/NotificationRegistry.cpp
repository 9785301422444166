#include <zorvan/platform/dispatch/internal/NotificationRegistry.h>

#include <utility>

namespace zorvan {

namespace {
std::atomic<std::uint64_t> registriesMade = 0;
}

NSNotificationCenter::Registry::Registry() : identity_(++registriesMade) {}

NSNotificationCenter::Registry::Kind NSNotificationCenter::Registry::kind(const Key& key) noexcept {
    if (key.name)
        return key.sender ? nameAndSender : nameOnly;
    return key.sender ? senderOnly : everything;
}

bool NSNotificationCenter::Registry::sameOwner(const std::weak_ptr<Sender>& a,
                                               const std::shared_ptr<Sender>& b) noexcept {
    return !a.owner_before(b) && !b.owner_before(a);
}

void NSNotificationCenter::Registry::add(const ObserverPointer& observer,
                                         std::optional<NSNotificationName> name,
                                         const std::shared_ptr<Sender>& sender) {
    const Key key{name ? &name->rawValue() : nullptr, sender.get()};
    const std::lock_guard lock(mutex_);
    Channel& home = channel(key, sender);
    home.observers.push_back(observer);
    home.snapshot = nullptr;
    observer->home = &home;
    observer->position = std::prev(home.observers.end());
    observer->number = nextNumber_++;
    interest(key).fetch_add(1, std::memory_order_relaxed);
}

/// The channel of that key, made when there is none.
NSNotificationCenter::Registry::Channel&
NSNotificationCenter::Registry::channel(const Key& key, const std::shared_ptr<Sender>& sender) {
    const std::size_t keyHash = hash(key);
    Channel* const found = channels_.find(key, keyHash);
    if (found && sameOwner(found->sender, sender))
        return *found;
    if (found) {
        orphans_.push_back(channels_.take(*found));
        found->orphaned = std::prev(orphans_.end());
    } else {
        ++channelCount_[kind(key)];
    }
    auto made = std::make_unique<Channel>();
    made->key = key;
    made->hash = keyHash;
    made->sender = sender;
    return channels_.insert(std::move(made));
}

std::atomic<std::uint32_t>& NSNotificationCenter::Registry::interest(const Key& key) noexcept {
    return key.name ? interest_[slot(key.name)] : interestInEveryName_;
}

void NSNotificationCenter::Registry::remove(const ObserverPointer& observer) {
    // Released after the lock: their blocks may hold anything.
    NotificationObserver::List removed;
    Snapshot::Owner outdated;
    std::unique_ptr<Channel> emptied;

    const std::lock_guard lock(mutex_);
    if (observer->registry != identity_ || !observer->deactivate())
        return;
    Channel& home = *static_cast<Channel*>(observer->home);
    removed.splice(removed.end(), home.observers, observer->position);
    outdated = std::exchange(home.snapshot, nullptr);
    interest(home.key).fetch_sub(1, std::memory_order_relaxed);
    if (home.observers.empty())
        emptied = takeChannel(home);
}

std::unique_ptr<NSNotificationCenter::Registry::Channel>
NSNotificationCenter::Registry::takeChannel(Channel& channel) {
    if (channel.orphaned) {
        std::unique_ptr<Channel> taken = std::move(**channel.orphaned);
        orphans_.erase(*taken->orphaned);
        return taken;
    }
    --channelCount_[kind(channel.key)];
    return channels_.take(channel);
}

void NSNotificationCenter::Registry::deliver(const Notification& notification) {
    Found found;
    find(notification, found);
    const std::span snapshots = found.snapshots();
    if (snapshots.size() == 1) {
        for (const ObserverPointer& observer : snapshots[0]->observers())
            observer->tell(notification);
    } else if (snapshots.size() > 1) {
        tellInOrder(snapshots, notification);
    }
}

/// Borrows the observers of each channel concerned.
void NSNotificationCenter::Registry::find(const Notification& notification, Found& found) {
    const std::string* const name = &notification.name.rawValue();
    const std::shared_ptr<Sender>& sender = notification.object;
    const std::lock_guard lock(mutex_);
    if (sender && channelCount_[nameAndSender] != 0)
        borrow({name, sender.get()}, sender, found);
    if (sender && channelCount_[senderOnly] != 0)
        borrow({nullptr, sender.get()}, sender, found);
    if (channelCount_[nameOnly] != 0)
        borrow({name, nullptr}, sender, found);
    if (channelCount_[everything] != 0)
        borrow({nullptr, nullptr}, sender, found);
}

inline void NSNotificationCenter::Registry::borrow(Key key, const std::shared_ptr<Sender>& sender,
                                                   Found& found) {
    Channel* const channel = channels_.find(key, hash(key));
    if (!channel || (key.sender && !sameOwner(channel->sender, sender)))
        return;
    if (!channel->snapshot)
        channel->snapshot = Snapshot::make({channel->observers.begin(), channel->observers.end()});
    found.borrow(*channel->snapshot);
}

/// Merges the channels, each of which is in the order of addition.
void NSNotificationCenter::Registry::tellInOrder(std::span<Snapshot* const> found,
                                                 const Notification& notification) {
    std::array<std::size_t, kindCount> next{};
    for (;;) {
        const NotificationObserver* first = nullptr;
        std::size_t from = 0;
        for (std::size_t i = 0; i < found.size(); ++i) {
            if (next[i] == found[i]->observers().size())
                continue;
            const NotificationObserver* const candidate = found[i]->observers()[next[i]].get();
            if (!first || candidate->number < first->number) {
                first = candidate;
                from = i;
            }
        }
        if (!first)
            return;
        ++next[from];
        first->tell(notification);
    }
}

} // namespace zorvan
