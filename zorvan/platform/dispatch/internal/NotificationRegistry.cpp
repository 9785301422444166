#include <zorvan/platform/dispatch/internal/NotificationRegistry.h>

#include <utility>

namespace zorvan {

namespace {
std::atomic<std::uint64_t> registriesMade = 0;
}

NSNotificationCenter::Registry::Registry() : identity_(++registriesMade) {}

std::size_t NSNotificationCenter::Registry::KeyHash::operator()(const Key& key) const noexcept {
    const std::size_t mixed = reinterpret_cast<std::size_t>(key.name) * 0x9E3779B97F4A7C15ULL ^
                              reinterpret_cast<std::size_t>(key.sender) * 0xC2B2AE3D27D4EB4FULL;
    return mixed ^ (mixed >> 32);
}

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
    const auto [place, isNew] = channels_.try_emplace(key);
    if (!isNew && !sameOwner(place->second->sender, sender)) {
        orphans_.push_back(std::move(place->second));
        orphans_.back()->orphaned = std::prev(orphans_.end());
        place->second = nullptr;
    }
    if (isNew)
        ++channelCount_[kind(key)];
    if (!place->second) {
        place->second = std::make_unique<Channel>();
        place->second->key = key;
        place->second->sender = sender;
    }
    return *place->second;
}

std::atomic<std::uint32_t>& NSNotificationCenter::Registry::interest(const Key& key) noexcept {
    return key.name ? interest_[slot(key.name)] : interestInEveryName_;
}

std::size_t NSNotificationCenter::Registry::slot(const std::string* name) noexcept {
    return KeyHash()({name, nullptr}) % interestSlots;
}

bool NSNotificationCenter::Registry::mayConcern(NSNotificationName name) const noexcept {
    return interest_[slot(&name.rawValue())].load(std::memory_order_relaxed) != 0 ||
           interestInEveryName_.load(std::memory_order_relaxed) != 0;
}

void NSNotificationCenter::Registry::remove(const ObserverPointer& observer) {
    // Released after the lock: their blocks may hold anything.
    NotificationObserver::List removed;
    SharedSnapshot outdated;
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
    std::unique_ptr<Channel> taken;
    if (channel.orphaned) {
        taken = std::move(**channel.orphaned);
        orphans_.erase(*channel.orphaned);
        return taken;
    }
    const auto place = channels_.find(channel.key);
    taken = std::move(place->second);
    channels_.erase(place);
    --channelCount_[kind(channel.key)];
    return taken;
}

void NSNotificationCenter::Registry::deliver(const Notification& notification) {
    Found found;
    const std::size_t count = find(notification, found);
    if (count == 1) {
        for (const ObserverPointer& observer : *found[0])
            observer->tell(notification);
    } else if (count > 1) {
        tellInOrder(std::span(found).first(count), notification);
    }
}

/// Fills the front of `found` with the observers of each channel concerned; the number of them.
std::size_t NSNotificationCenter::Registry::find(const Notification& notification, Found& found) {
    const std::string* const name = &notification.name.rawValue();
    const Sender* const sender = notification.object.get();
    const std::array<Key, kindCount> keys{
        {{name, sender}, {name, nullptr}, {nullptr, sender}, {nullptr, nullptr}}};
    std::size_t count = 0;
    const std::lock_guard lock(mutex_);
    for (const Kind kind : {nameAndSender, nameOnly, senderOnly, everything}) {
        const bool needsSender = kind == nameAndSender || kind == senderOnly;
        if (channelCount_[kind] == 0 || (needsSender && !sender))
            continue;
        found[count] = snapshot(keys[kind], notification.object);
        if (found[count])
            ++count;
    }
    return count;
}

NSNotificationCenter::Registry::SharedSnapshot
NSNotificationCenter::Registry::snapshot(const Key& key, const std::shared_ptr<Sender>& sender) {
    const auto place = channels_.find(key);
    if (place == channels_.end())
        return nullptr;
    Channel& channel = *place->second;
    if (key.sender && !sameOwner(channel.sender, sender))
        return nullptr;
    if (!channel.snapshot)
        channel.snapshot =
            std::make_shared<const Snapshot>(channel.observers.begin(), channel.observers.end());
    return channel.snapshot;
}

/// Merges the channels, each of which is in the order of addition.
void NSNotificationCenter::Registry::tellInOrder(std::span<const SharedSnapshot> found,
                                                 const Notification& notification) {
    std::array<std::size_t, kindCount> next{};
    for (;;) {
        const NotificationObserver* first = nullptr;
        std::size_t from = 0;
        for (std::size_t i = 0; i < found.size(); ++i) {
            if (next[i] == found[i]->size())
                continue;
            const NotificationObserver* const candidate = (*found[i])[next[i]].get();
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
