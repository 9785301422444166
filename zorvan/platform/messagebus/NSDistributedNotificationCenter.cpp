#include <zorvan/platform/messagebus/NSDistributedNotificationCenter.h>

#include <zorvan/platform/messagebus/internal/Exchange.h>

#include <utility>

namespace zorvan {

const std::shared_ptr<NSDistributedNotificationCenter>&
NSDistributedNotificationCenter::defaultCenter() {
    static const auto* const center =
        new std::shared_ptr<NSDistributedNotificationCenter>(new NSDistributedNotificationCenter);
    return *center;
}

NSDistributedNotificationCenter::NSDistributedNotificationCenter()
    : exchange_(std::make_shared<Exchange>()) {}

NSDistributedNotificationCenter::~NSDistributedNotificationCenter() = default;

std::shared_ptr<NotificationObserver> NSDistributedNotificationCenter::addObserver(
    NSNotificationName name, std::shared_ptr<Sender> object,
    std::shared_ptr<NSOperationQueue> queue, Handler block) {
    return exchange_->add(name, object, std::move(queue), std::move(block));
}

void NSDistributedNotificationCenter::removeObserver(
    const std::shared_ptr<NotificationObserver>& observer) {
    if (observer)
        exchange_->remove(observer);
}

void NSDistributedNotificationCenter::post(
    NSNotificationName name, const std::optional<std::string>& object,
    const std::optional<PropertyList::Dictionary>& userInfo) {
    exchange_->send({name.rawValue(), object, userInfo});
}

const std::string*
NSDistributedNotificationCenter::sender(const Notification& notification) noexcept {
    return static_cast<const std::string*>(notification.object.get());
}

} // namespace zorvan
