#include <zorvan/platform/messagebus/internal/Exchange.h>

#include <zorvan/platform/foundation/internal/unlessOutOfMemory.h>

#include <utility>

namespace zorvan {

NSDistributedNotificationCenter::Exchange::Exchange()
    : transport_(internal::makeTransport([this](std::span<const std::byte> bytes) {
          internal::unlessOutOfMemory([&] { receive(bytes); });
      })) {}

std::shared_ptr<NotificationObserver> NSDistributedNotificationCenter::Exchange::add(
    NSNotificationName name, const std::shared_ptr<Sender>& object,
    std::shared_ptr<NSOperationQueue> queue, Handler block) {
    if (!queue)
        queue = NSOperationQueue::main();
    const std::lock_guard changing(changing_);
    std::shared_ptr<NotificationObserver> observer;
    bool isFirst;
    {
        const std::lock_guard lock(mutex_);
        const std::shared_ptr<Sender> sender = object ? shared(*object) : nullptr;
        observer = center_->addObserver(name, sender, std::move(queue), std::move(block));
        registrations_.insert({observer.get(), {name, sender}});
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
    center_->removeObserver(observer);
    const std::lock_guard changing(changing_);
    std::string unwanted;
    if (forget(observer.get(), unwanted))
        transport_->unwant(unwanted);
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
    if (read->object && !sender)
        sender = std::make_shared<Sender>(std::move(*read->object));
    std::optional<Notification::UserInfo> userInfo;
    if (read->userInfo) {
        userInfo.emplace();
        for (auto& [key, value] : *read->userInfo)
            userInfo->emplace_hint(userInfo->end(), key, std::move(value));
    }
    center_->post(*name, std::move(sender), std::move(userInfo));
}

} // namespace zorvan
