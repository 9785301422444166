#include <zorvan/platform/messagebus/internal/Exchange.h>

#include <zorvan/platform/dispatch/DispatchQueue.h>
#include <zorvan/platform/foundation/LibraryLog.h>
#include <zorvan/platform/foundation/internal/unlessOutOfMemory.h>

#include <utility>

namespace zorvan {

namespace {

constexpr std::size_t maxWaiting = 64 << 20;

// In memory, roughly.
constexpr std::size_t bareSize = 256;
constexpr std::size_t entrySize = 128;

std::size_t sizeOf(const PropertyList& value);

std::size_t sizeOf(const PropertyList::Dictionary& dictionary) {
    std::size_t size = 0;
    for (const auto& [key, value] : dictionary)
        size += entrySize + key.size() + sizeOf(value);
    return size;
}
std::size_t sizeOf(const PropertyList& value) {
    std::size_t size = sizeof value;
    if (const auto* text = value.as<std::string>())
        size += text->size();
    else if (const auto* data = value.as<Data>())
        size += data->size();
    else if (const auto* dictionary = value.as<PropertyList::Dictionary>())
        size += sizeOf(*dictionary);
    else if (const auto* array = value.as<PropertyList::Array>())
        for (const PropertyList& element : *array)
            size += sizeOf(element);
    return size;
}
std::size_t sizeOf(const internal::WireNotification& notification) {
    return bareSize + (notification.object ? notification.object->size() : 0) +
           (notification.userInfo ? sizeOf(*notification.userInfo) : 0);
}

} // namespace

/// One for all observers, until the last of them has been told.
struct NSDistributedNotificationCenter::Exchange::Arrival final
    : Notification,
      std::enable_shared_from_this<Arrival> {
    Arrival(Notification notification, std::shared_ptr<const void> room)
        : Notification(std::move(notification)), room(std::move(room)) {}

    const std::shared_ptr<const void> room;
};

struct NSDistributedNotificationCenter::Exchange::Observation
    : std::enable_shared_from_this<Observation> {
    Observation(std::shared_ptr<NSOperationQueue> queue, Handler block)
        : queue(std::move(queue)), block(std::move(block)) {}

    void tell(std::shared_ptr<const Arrival> arrival) const {
        queue->addOperation([self = shared_from_this(), arrival = std::move(arrival)] {
            if (self->isActive)
                self->block(*arrival);
        });
    }

    const std::shared_ptr<NSOperationQueue> queue;
    const Handler block;
    std::atomic<bool> isActive = true;
};

NSDistributedNotificationCenter::Exchange::Exchange()
    : transport_(internal::makeTransport([this](std::span<const std::byte> bytes) {
          internal::unlessOutOfMemory([&] { receive(bytes); });
      })) {}

std::shared_ptr<NotificationObserver> NSDistributedNotificationCenter::Exchange::add(
    NSNotificationName name, const std::shared_ptr<Sender>& object,
    std::shared_ptr<NSOperationQueue> queue, Handler block) {
    if (!queue)
        queue = NSOperationQueue::main();
    const auto observation = std::make_shared<Observation>(std::move(queue), std::move(block));
    const auto tell = [observation](const Notification& notification) {
        observation->tell(static_cast<const Arrival&>(notification).shared_from_this());
    };
    const std::lock_guard changing(changing_);
    std::shared_ptr<NotificationObserver> observer;
    bool isFirst;
    {
        const std::lock_guard lock(mutex_);
        const std::shared_ptr<Sender> sender = object ? shared(*object) : nullptr;
        observer = center_->addObserver(name, sender, nullptr, tell);
        registrations_.insert({observer.get(), {name, sender, observation}});
        Interest& interest = interests_.try_emplace(name.rawValue(), Interest{name}).first->second;
        isFirst = interest.observers++ == 0;
    }
    if (isFirst)
        transport_->want(name.rawValue());
    return observer;
}

/// The one object of this process that stands for a sender's text; under the lock.
std::shared_ptr<NSDistributedNotificationCenter::Sender>
NSDistributedNotificationCenter::Exchange::shared(const std::string& text) {
    std::weak_ptr<Sender>& known = senders_[text];
    std::shared_ptr<Sender> sender = known.lock();
    if (!sender)
        known = sender = std::make_shared<Sender>(text);
    return sender;
}

void NSDistributedNotificationCenter::Exchange::remove(
    const std::shared_ptr<NotificationObserver>& observer) {
    // First, so that no block begins while the transport is told.
    end(observer.get());
    center_->removeObserver(observer);
    const std::lock_guard changing(changing_);
    std::string unwanted;
    if (forget(observer.get(), unwanted))
        transport_->unwant(unwanted);
}

void NSDistributedNotificationCenter::Exchange::end(const NotificationObserver* observer) {
    const std::lock_guard lock(mutex_);
    const auto registration = registrations_.find(observer);
    if (registration != registrations_.end())
        registration->second.observation->isActive = false;
}

/// True when nobody wants notifications of that name any more.
bool NSDistributedNotificationCenter::Exchange::forget(const NotificationObserver* observer,
                                                       std::string& unwanted) {
    const std::lock_guard lock(mutex_);
    auto registration = registrations_.extract(observer);
    if (!registration)
        return false;
    if (auto& sender = registration.mapped().object) {
        const std::string text = *sender;
        sender = nullptr;
        const auto known = senders_.find(text);
        if (known->second.expired())
            senders_.erase(known);
    }
    unwanted = registration.mapped().name.rawValue();
    const auto interest = interests_.find(unwanted);
    if (--interest->second.observers > 0)
        return false;
    interests_.erase(interest);
    return true;
}

void NSDistributedNotificationCenter::Exchange::send(
    const internal::WireNotification& notification) {
    transport_->send(notification.name, internal::encode(notification));
}

void NSDistributedNotificationCenter::Exchange::receive(std::span<const std::byte> bytes) {
    auto read = internal::decodeNotification(bytes);
    if (!read)
        return;
    std::shared_ptr<Sender> sender;
    std::optional<NSNotificationName> name;
    {
        const std::lock_guard lock(mutex_);
        const auto interest = interests_.find(read->name);
        if (interest == interests_.end())
            return;
        name = interest->second.name;
        if (read->object) {
            const auto known = senders_.find(*read->object);
            if (known != senders_.end())
                sender = known->second.lock();
        }
    }
    auto room = roomFor(sizeOf(*read));
    if (!room)
        return;
    if (read->object && !sender)
        sender = std::make_shared<Sender>(std::move(*read->object));
    std::optional<Notification::UserInfo> userInfo;
    if (read->userInfo) {
        userInfo.emplace();
        for (auto& [key, value] : *read->userInfo)
            userInfo->emplace_hint(userInfo->end(), key, std::move(value));
    }
    const auto arrival = std::make_shared<const Arrival>(
        Notification(*name, std::move(sender), std::move(userInfo)), std::move(room));
    center_->post(*arrival);
}

/// For as long as what is returned lives; null when there is none.
std::shared_ptr<const void> NSDistributedNotificationCenter::Exchange::roomFor(std::size_t size) {
    if (waiting_.fetch_add(size) + size <= maxWaiting)
        return {this, [this, size](const void*) { giveBack(size); }};
    giveBack(size);
    if (!isFull_.exchange(true))
        DispatchQueue::global()->async([] { // others wait for this thread
            LibraryLog::write({LibraryLog::Level::warning, "messagebus",
                               "Notifications of other processes are dropped: too many wait for "
                               "observers that are busy."});
        });
    return nullptr;
}

void NSDistributedNotificationCenter::Exchange::giveBack(std::size_t size) noexcept {
    if (waiting_.fetch_sub(size) == size)
        isFull_ = false;
}

} // namespace zorvan
