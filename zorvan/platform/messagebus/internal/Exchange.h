#pragma once

#include <zorvan/platform/messagebus/NSDistributedNotificationCenter.h>
#include <zorvan/platform/messagebus/internal/Transport.h>
#include <zorvan/platform/messagebus/internal/WireFormat.h>

#include <atomic>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>

namespace zorvan {

/// Stands between the transport and a center of this process that tells the observers.
class NSDistributedNotificationCenter::Exchange {
public:
    Exchange();

    std::shared_ptr<NotificationObserver> add(NSNotificationName name,
                                              const std::shared_ptr<Sender>& object,
                                              std::shared_ptr<NSOperationQueue> queue,
                                              Handler block);
    void remove(const std::shared_ptr<NotificationObserver>& observer);
    void send(const internal::WireNotification& notification);

private:
    struct Arrival;
    struct Observation;
    struct Registration {
        NSNotificationName name;
        std::shared_ptr<Sender> object; // the one object that stands for that text here
        std::shared_ptr<Observation> observation;
    };
    struct Interest {
        NSNotificationName name;
        std::size_t observers = 0;
    };

    void receive(std::span<const std::byte> bytes);
    std::shared_ptr<Sender> shared(const std::string& text);
    void end(const NotificationObserver* observer);
    bool forget(const NotificationObserver* observer, std::string& unwanted);
    std::shared_ptr<const void> roomFor(std::size_t size);
    void giveBack(std::size_t size) noexcept;

    const std::shared_ptr<NSNotificationCenter> center_ = NSNotificationCenter::create();

    std::mutex changing_; // held while the transport is told what is wanted; before mutex_
    std::mutex mutex_;
    std::unordered_map<const NotificationObserver*, Registration> registrations_;
    std::map<std::string, Interest, std::less<>> interests_;
    std::unordered_map<std::string, std::weak_ptr<Sender>> senders_;

    std::atomic<std::size_t> waiting_ = 0; // bytes that have arrived for observers who are busy
    std::atomic<bool> isFull_ = false;     // which has been told

    const std::unique_ptr<internal::Transport> transport_;
};

} // namespace zorvan
