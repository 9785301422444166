#pragma once

#include <zorvan/platform/dispatch/NSNotificationCenter.h>
#include <zorvan/platform/foundation/PropertyList.h>

#include <memory>
#include <optional>
#include <string>

namespace zorvan {

/// Tells observers in every process of the user's session, this one included, what any of them
/// posts.
///
/// Senders are texts and told apart by their text. A handler finds the sender's text with `sender`
/// and each entry of the user information with `notification.value<PropertyList>(key)`.
///
/// Once `addObserver` has returned, everything posted from then on anywhere is delivered: on the
/// observer's queue, or on the main queue when it has none; never within `post`. Notifications from
/// one process arrive in the order posted. What goes beyond 64 MiB of memory while observers are
/// busy is dropped, and `LibraryLog` is told once. After `removeObserver` has returned, no block of
/// the observer begins; one may still be running elsewhere. All functions may be called from any
/// thread.
///
/// They travel over the session bus. Where there is none they travel through sockets in
/// `$XDG_RUNTIME_DIR` that only the user can reach, and where that is missing too, within the
/// process. What is chosen at the first use stays; a bus that goes away is looked for again, and
/// what is posted meanwhile is lost.
class NSDistributedNotificationCenter {
public:
    using Sender = const std::string;              ///< What senders are: texts.
    using Handler = NSNotificationCenter::Handler; ///< What observers are called with.

    /// The center of the process.
    static const std::shared_ptr<NSDistributedNotificationCenter>& defaultCenter();

    ~NSDistributedNotificationCenter();
    NSDistributedNotificationCenter(const NSDistributedNotificationCenter&) = delete;
    NSDistributedNotificationCenter& operator=(const NSDistributedNotificationCenter&) = delete;

    /// Has the block called for notifications of that name from the sender with that text (null:
    /// from every one, or none).
    std::shared_ptr<NotificationObserver> addObserver(NSNotificationName name,
                                                      std::shared_ptr<Sender> object,
                                                      std::shared_ptr<NSOperationQueue> queue,
                                                      Handler block);

    /// Ends the registration. No effect when it has ended already or is another center's.
    void removeObserver(const std::shared_ptr<NotificationObserver>& observer);

    /// Posts and returns without waiting for delivery.
    ///
    /// Throws `std::invalid_argument` when a text is not UTF-8 or the name is empty or holds a NUL,
    /// and `std::length_error` when the whole takes more than 4 MiB, nests deeper than 64 or holds
    /// more than 100,000 values.
    void post(NSNotificationName name, const std::optional<std::string>& object = {},
              const std::optional<PropertyList::Dictionary>& userInfo = {});

    /// The text of the sender of a notification that this center delivered; null when it has none.
    static const std::string* sender(const Notification& notification) noexcept;

private:
    class Exchange;
    NSDistributedNotificationCenter();

    const std::shared_ptr<Exchange> exchange_;
};

} // namespace zorvan
