#pragma once

#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <concepts>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan {

/// One registration with a notification center: which notification, from which sender, on which
/// queue; started and ended explicitly. What NoteSubscriber and DistributedNoteSubscriber are.
///
/// Releasing a subscriber does not end its observation; the registration stays with the center, and
/// its handler is called for as long as the target lives. Use it from one thread.
template <class Center>
class BasicNoteSubscriber {
public:
    using Sender = typename Center::Sender; ///< What notifications of this center are sent by.

    /// One that observes nothing yet.
    static std::shared_ptr<BasicNoteSubscriber> create(std::shared_ptr<Center> center) {
        return std::shared_ptr<BasicNoteSubscriber>(new BasicNoteSubscriber(std::move(center)));
    }

    /// The one it was made with.
    std::shared_ptr<Center> center() const noexcept { return center_; }

    // Setting these while observing takes effect at the next `subscribe`.

    /// The queue the handler runs on; null for the thread that the center delivers on.
    /// @{
    std::shared_ptr<NSOperationQueue> queue() const noexcept { return queue_; }
    void setQueue(std::shared_ptr<NSOperationQueue> queue) { queue_ = std::move(queue); }
    /// @}

    /// The notification to observe; must be set before subscribing.
    /// @{
    std::optional<NSNotificationName> name() const noexcept { return name_; }
    void setName(std::optional<NSNotificationName> name) noexcept { name_ = name; }
    /// @}

    /// The sender to observe, not kept alive; null for every sender, and once it is gone.
    /// @{
    std::shared_ptr<Sender> object() const noexcept { return object_.lock(); }
    void setObject(const std::shared_ptr<Sender>& object) noexcept {
        object_ = object;
        text_.reset();
    }
    void setObject(std::nullptr_t) noexcept { setObject(std::shared_ptr<Sender>()); }
    /// @}
    /// Where senders are texts: the sender with that text, which is kept.
    void setObject(std::string_view text) requires std::same_as<Sender, const std::string> {
        text_ = std::make_shared<const std::string>(text);
        object_ = text_;
    }

    /// The registration; null when not observing.
    std::shared_ptr<NotificationObserver> observer() const noexcept { return observer_.lock(); }

    /// Starts to observe: each notification calls the handler with the target and the notification
    /// while the target, which is not kept alive, lives. A sender that is gone by now means every
    /// sender.
    ///
    /// Stops the program when already observing, and when no name has been set.
    template <class Target,
              std::invocable<const std::shared_ptr<Target>&, const Notification&> Handler>
    void subscribe(const std::shared_ptr<Target>& target, Handler handler) {
        if (!observer_.expired())
            fatalError("Subcriber is already observing.");
        if (!name_)
            fatalError("Notification name has not been set.");
        observer_ = center_->addObserver(
            *name_, object(), queue_,
            [weakTarget = std::weak_ptr<Target>(target),
             handler = std::move(handler)](const Notification& notification) mutable {
                if (const std::shared_ptr<Target> living = weakTarget.lock())
                    handler(living, notification);
            });
    }

    /// Ends the observation; no effect when there is none.
    void unsubscribe() {
        if (const auto registration = observer()) {
            center_->removeObserver(registration);
            observer_.reset();
        }
    }

private:
    explicit BasicNoteSubscriber(std::shared_ptr<Center> center) : center_(std::move(center)) {}

    const std::shared_ptr<Center> center_;
    std::shared_ptr<NSOperationQueue> queue_;
    std::optional<NSNotificationName> name_;
    std::weak_ptr<Sender> object_;
    std::shared_ptr<Sender> text_; // a sender that nobody else keeps
    std::weak_ptr<NotificationObserver> observer_;
};

} // namespace zorvan
