#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <zorvan/platform/dispatch/internal/NotificationRegistry.h>

#include <utility>

namespace zorvan {

std::shared_ptr<NSNotificationCenter> NSNotificationCenter::create() {
    return std::shared_ptr<NSNotificationCenter>(new NSNotificationCenter);
}

const std::shared_ptr<NSNotificationCenter>& NSNotificationCenter::defaultCenter() {
    static const auto* const center = new std::shared_ptr<NSNotificationCenter>(create());
    return *center;
}

NSNotificationCenter::NSNotificationCenter() : registry_(std::make_unique<Registry>()) {}

NSNotificationCenter::~NSNotificationCenter() = default;

std::shared_ptr<NotificationObserver>
NSNotificationCenter::addObserver(std::optional<NSNotificationName> name,
                                  std::shared_ptr<Sender> object,
                                  std::shared_ptr<NSOperationQueue> queue, Handler block) {
    if (!object)
        object.reset(); // it may have an owner all the same
    auto observer = std::make_shared<NotificationObserver>(
        registry_->identity(),
        internal::NotificationKey{name ? &name->rawValue() : nullptr, object.get(), object},
        std::move(queue), std::move(block));
    registry_->add(observer);
    return observer;
}

void NSNotificationCenter::removeObserver(const std::shared_ptr<NotificationObserver>& observer) {
    if (observer)
        registry_->remove(observer);
}

void NSNotificationCenter::post(NSNotificationName name, std::shared_ptr<Sender> object,
                                std::optional<Notification::UserInfo> userInfo) {
    registry_->deliver(Notification(name, std::move(object), std::move(userInfo)));
}

void NSNotificationCenter::post(const Notification& notification) {
    registry_->deliver(notification);
}

} // namespace zorvan
