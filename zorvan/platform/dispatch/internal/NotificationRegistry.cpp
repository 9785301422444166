#include <zorvan/platform/dispatch/internal/NotificationRegistry.h>

#include <zorvan/platform/foundation/internal/ForkParticipant.h>

#include <algorithm>
#include <mutex>
#include <utility>

namespace zorvan {

namespace {

std::atomic<std::uint64_t> registriesMade = 0;

constinit internal::BriefMutex mutex; // of all registries
const internal::ForkParticipant::Joined joined(mutex);

} // namespace

NSNotificationCenter::Registry::Registry() : identity_(++registriesMade) {}

void NSNotificationCenter::Registry::add(const ObserverPointer& observer) {
    {
        const std::lock_guard lock(mutex);
        NotificationObserver::List& channel = channels_[observer->key];
        observer->position = channel.insert(channel.end(), observer);
        observer->number = nextNumber_++;
        interest(observer->key).fetch_add(1, std::memory_order_relaxed);
    }
    outdate(observer->key);
}

void NSNotificationCenter::Registry::remove(const ObserverPointer& observer) {
    // Released after the lock: their blocks may hold anything.
    NotificationObserver::List removed;
    decltype(channels_)::node_type emptied;
    {
        const std::lock_guard lock(mutex);
        if (observer->registry != identity_ || !observer->deactivate())
            return;
        const auto channel = channels_.find(observer->key);
        removed.splice(removed.end(), channel->second, observer->position);
        interest(observer->key).fetch_sub(1, std::memory_order_relaxed);
        if (channel->second.empty())
            emptied = channels_.extract(channel);
    }
    outdate(observer->key);
}

/// Clears the places of those whom a channel of that key concerns.
void NSNotificationCenter::Registry::outdate(const Key& key) noexcept {
    const auto clear = [](Row& row) {
        for (Place& each : row)
            each.clear();
    };
    if (!key.name)
        std::ranges::for_each(places_, clear);
    else if (!key.sender)
        clear(row(key.name));
    else
        place(key).clear();
}

/// Merges the channels concerned, each of which is in the order of addition.
NSNotificationCenter::Registry::Loan NSNotificationCenter::Registry::find(const KeyView& key) {
    const std::shared_ptr<Sender> nobody;
    Recipients::Observers found;
    const auto add = [&](const KeyView& channelKey) {
        const auto channel = channels_.find(channelKey);
        if (channel == channels_.end())
            return;
        const auto middle =
            found.insert(found.end(), channel->second.begin(), channel->second.end());
        std::inplace_merge(found.begin(), middle, found.end(),
                           [](const auto& a, const auto& b) { return a->number < b->number; });
    };
    Place::Former former; // released after the lock
    const std::lock_guard lock(mutex);
    if (key.sender) {
        add(key);
        add({nullptr, key.sender, key.owner});
    }
    add({key.name, nullptr, nobody});
    add({nullptr, nullptr, nobody});
    auto* const recipients = new Recipients({key.name, key.sender, key.owner}, std::move(found));
    former = place(key).putLent(recipients);
    return Loan(recipients);
}

} // namespace zorvan
