#pragma once

#include <zorvan/platform/dispatch/NSOperationQueue.h>
#include <zorvan/platform/dispatch/Notification.h>

#include <functional>
#include <memory>
#include <optional>

namespace zorvan {

/// One registration with a notification center: what `addObserver` returns and `removeObserver`
/// takes. The center keeps it alive until it is removed.
class NotificationObserver;

/// Tells observers what objects of this process post.
///
/// Observers are told in the order in which they were added, on the posting thread, before `post`
/// returns; those with a queue have the block added to that queue instead, which `post` does not
/// wait for. An exception from a block reaches the poster, and the observers after it are not told.
///
/// All functions may be called from any thread, and by observers while they are told. An observer
/// added during a post is told of the next one. Once `removeObserver` has returned on a thread, no
/// block of the observer begins there, nor in a queue; only a call that another thread had already
/// begun may still be under way.
///
/// Senders are told apart by identity and not kept alive. When a sender is gone, an object that
/// takes its address is not taken for it.
class NSNotificationCenter {
public:
    /// What senders are.
    using Sender = const void;
    /// What observers are called with.
    using Handler = std::function<void(const Notification&)>;

    /// A center of your own, for those who know of it.
    static std::shared_ptr<NSNotificationCenter> create();

    /// The center of the process.
    static const std::shared_ptr<NSNotificationCenter>& defaultCenter();

    /// Ends every registration.
    ~NSNotificationCenter();
    NSNotificationCenter(const NSNotificationCenter&) = delete;
    NSNotificationCenter& operator=(const NSNotificationCenter&) = delete;

    /// Has the block called for notifications of that name (absent: of every name) from that sender
    /// (null: from every one, or none), on that queue (null: on the posting thread).
    std::shared_ptr<NotificationObserver> addObserver(std::optional<NSNotificationName> name,
                                                      std::shared_ptr<Sender> object,
                                                      std::shared_ptr<NSOperationQueue> queue,
                                                      Handler block);

    /// Ends the registration. No effect when it has ended already or is another center's.
    void removeObserver(const std::shared_ptr<NotificationObserver>& observer);

    /// Tells the observers of that name and sender, as said above.
    /// @{
    void post(NSNotificationName name, std::shared_ptr<Sender> object = {},
              std::optional<Notification::UserInfo> userInfo = {});
    void post(const Notification& notification);
    /// @}

private:
    class Registry;
    NSNotificationCenter();

    const std::unique_ptr<Registry> registry_;
};

} // namespace zorvan
