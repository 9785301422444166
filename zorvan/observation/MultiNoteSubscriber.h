#pragma once

#include <zorvan/observation/NoteSubscriber.h>
#include <zorvan/observation/WeakValue.h>

#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

/// Observes every pair of a list of names and a list of senders, each with a NoteSubscriber.
///
/// Releasing it does not end its observations. Use it from one thread.
class MultiNoteSubscriber {
public:
    using Subscribers = std::vector<std::shared_ptr<NoteSubscriber>>; ///< One for each pair.

    /// One that observes nothing yet.
    static std::shared_ptr<MultiNoteSubscriber>
    create(std::shared_ptr<NSNotificationCenter> center);

    /// The one it was made with.
    std::shared_ptr<NSNotificationCenter> center() const noexcept { return center_; }

    // Setting these while observing takes effect at the next `subscribe`.

    /// The queue handlers run on; null for the posting thread.
    /// @{
    std::shared_ptr<NSOperationQueue> queue() const noexcept { return queue_; }
    void setQueue(std::shared_ptr<NSOperationQueue> queue) { queue_ = std::move(queue); }
    /// @}

    /// The names to observe; must not be empty when subscribing.
    /// @{
    std::vector<NSNotificationName> names() const { return names_; }
    void setNames(std::vector<NSNotificationName> names) { names_ = std::move(names); }
    /// @}

    /// The senders to observe; must not be empty when subscribing. An empty box stands for every
    /// sender.
    /// @{
    std::vector<OpaqueWeakValue> objects() const { return objects_; }
    void setObjects(std::vector<OpaqueWeakValue> objects) { objects_ = std::move(objects); }
    /// @}

    /// One per pair, by name and within a name by sender, while observing; else empty.
    Subscribers subscribers() const { return subscribers_; }

    /// Starts to observe, as `NoteSubscriber::subscribe` does for each pair. When one throws, none
    /// observes.
    ///
    /// Stops the program when already observing, when there are no names, or no objects.
    template <class Target, class Handler>
    void subscribe(const std::shared_ptr<Target>& target, const Handler& handler) {
        Subscribers made = makeSubscribers();
        try {
            for (const auto& subscriber : made)
                subscriber->subscribe(target, handler);
        } catch (...) {
            for (const auto& subscriber : made)
                subscriber->unsubscribe();
            throw;
        }
        subscribers_ = std::move(made);
    }

    /// Ends the observations; no effect when there are none.
    void unsubscribe();

private:
    explicit MultiNoteSubscriber(std::shared_ptr<NSNotificationCenter> center)
        : center_(std::move(center)) {}
    Subscribers makeSubscribers() const;

    const std::shared_ptr<NSNotificationCenter> center_;
    std::shared_ptr<NSOperationQueue> queue_;
    std::vector<NSNotificationName> names_;
    std::vector<OpaqueWeakValue> objects_;
    Subscribers subscribers_;
};

} // namespace zorvan
