#include <zorvan/platform/dispatch/internal/MainDispatchQueue.h>
#include <zorvan/platform/foundation/LibraryLog.h>
#include <zorvan/platform/foundation/internal/FileDescriptor.h>
#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/foundation/internal/Wakeup.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/percentEscapes.h>
#include <zorvan/platform/foundation/internal/unlessOutOfMemory.h>
#include <zorvan/platform/messagebus/internal/Transport.h>
#include <zorvan/platform/messagebus/internal/WireFormat.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/timerfd.h>
#include <system_error>
#include <systemd/sd-bus.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace zorvan::internal {

namespace {

constexpr const char* objectPath = "/org/zorvan/Notifications";
constexpr const char* interfaceName = "org.zorvan.Notifications1";
constexpr const char* signalName = "Posted";
constexpr const char* signature = "say";         // the sort key and the message
constexpr std::uint64_t callTimeout = 5'000'000; // microseconds
constexpr auto betweenAttempts = std::chrono::seconds(1);
constexpr int messagesInARow = 64;
constexpr auto patience = std::chrono::milliseconds(5); // with a busy main thread

using Clock = std::chrono::steady_clock;
constexpr auto never = Clock::time_point::max();

using Bus = std::unique_ptr<sd_bus, Release<sd_bus_flush_close_unref>>;
using Message = std::unique_ptr<sd_bus_message, Release<sd_bus_message_unref>>;
using Slot = std::unique_ptr<sd_bus_slot, Release<sd_bus_slot_unref>>;

Bus openBus() {
    sd_bus* bus = nullptr;
    const bool opened = sd_bus_open_user(&bus) >= 0;
    Bus owned(bus);
    const char* name = nullptr;
    if (!opened || sd_bus_set_method_call_timeout(bus, callTimeout) < 0 ||
        sd_bus_get_unique_name(bus, &name) < 0)
        return nullptr;
    return owned;
}

/// A name as the bus sorts by it: in characters that mean nothing in its rules, whose length is
/// limited, so the start of a long name stands for it.
std::string sortKey(std::string_view name) {
    constexpr std::size_t maxLength = 512;
    std::string key;
    for (const char c : name) {
        if (internal::isAlphanumeric(c) || c == '.' || c == '_' || c == '-')
            key += c;
        else
            internal::appendPercentEscape(key, c);
        if (key.size() >= maxLength)
            break;
    }
    return key;
}

std::string matchRule(const std::string& name) {
    return std::string("type='signal',interface='") + interfaceName + "',member='" + signalName +
           "',arg0='" + sortKey(name) + "'";
}

/// Readable once the delay, of less than a second, has passed.
class Timer {
public:
    Timer() : descriptor_(::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
        if (!descriptor_)
            throw std::system_error(errno, std::generic_category(), "timerfd_create");
    }

    int descriptor() const noexcept { return descriptor_.get(); }
    void start(std::chrono::nanoseconds delay) const noexcept {
        const itimerspec setting{{}, {0, delay.count()}};
        ::timerfd_settime(descriptor_.get(), 0, &setting, nullptr);
    }
    void clear() const noexcept {
        std::uint64_t expirations;
        [[maybe_unused]] const auto size =
            ::read(descriptor_.get(), &expirations, sizeof expirations);
    }

private:
    FileDescriptor descriptor_;
};

/// The connection is used under a lock, by the threads that send and by one that receives: the main
/// thread while it is idle in `MainQueue::run` or has been a moment ago, else a thread of our own.
/// Between the two the turn changes without haste, so that neither wakes the other for a message.
class BusTransport final : public Transport, public IdleSource {
public:
    BusTransport(Bus bus, Receive receive) : bus_(std::move(bus)), receive_(std::move(receive)) {
        std::thread([this] { run(); }).detach();
        MainDispatchQueue::shared()->setIdleSource(*this);
    }

    void want(const std::string& name) override {
        const std::lock_guard lock(mutex_);
        Slot& slot = slots_[name];
        sd_bus_slot* made = nullptr;
        if (bus_ && sd_bus_add_match(bus_.get(), &made, matchRule(name).c_str(),
                                     &BusTransport::keep, this) >= 0)
            slot.reset(made);
        else
            nextAttempt_ = Clock::now();
        wakeup_.signal(); // the call may have read other messages on the way
    }

    void unwant(const std::string& name) override {
        const std::lock_guard lock(mutex_);
        slots_.erase(name);
        wakeup_.signal();
    }

    void send(const std::string& name, Data message) override {
        const std::lock_guard lock(mutex_);
        sd_bus_message* made = nullptr;
        if (!bus_ ||
            sd_bus_message_new_signal(bus_.get(), &made, objectPath, interfaceName, signalName) < 0)
            return;
        const Message signal(made);
        if (sd_bus_message_append(made, "s", sortKey(name).c_str()) < 0 ||
            sd_bus_message_append_array(made, 'y', message.data(), message.size()) < 0)
            return;
        sd_bus_send(bus_.get(), made, nullptr);
        std::uint64_t unsent = 0;
        if (sd_bus_get_n_queued_write(bus_.get(), &unsent) < 0 || unsent > 0)
            wakeup_.signal();
    }

    pollfd beginIdle() override {
        const pollfd nothing{-1, 0, 0};
        // Another thread may be waiting for the bus to answer; the main thread must not.
        const std::unique_lock lock(mutex_, std::try_to_lock);
        if (!lock || !bus_)
            return nothing;
        idleEnd_ = never;
        if (!mainReceives_.exchange(true))
            wakeup_.signal();
        return {sd_bus_get_fd(bus_.get()), POLLIN, 0};
    }

    void endIdle(short events) override {
        if (events != 0)
            deliver();
        if (!mainReceives_)
            return;
        idleEnd_ = Clock::now();
        if (!watching_.exchange(true))
            watch_.start(patience);
    }

private:
    /// Asks the bus again for what it did not grant, without waiting for its answer: meanwhile
    /// others post.
    void askAgain() {
        const std::lock_guard lock(mutex_);
        if (Clock::now() < nextAttempt_)
            return;
        nextAttempt_ = Clock::now() + betweenAttempts;
        bool isAsked = true;
        for (auto& [name, slot] : slots_)
            isAsked = (slot || ask(name, slot)) && isAsked;
        if (isAsked)
            nextAttempt_ = never;
    }

    bool ask(const std::string& name, Slot& slot) {
        sd_bus_slot* made = nullptr;
        if (sd_bus_add_match_async(bus_.get(), &made, matchRule(name).c_str(), &BusTransport::keep,
                                   &BusTransport::takeAnswer, this) < 0)
            return false;
        slot.reset(made);
        return true;
    }

    /// The answer to that. Called by the bus, under the lock.
    static int takeAnswer(sd_bus_message* answer, void* self, sd_bus_error*) noexcept {
        if (sd_bus_message_is_method_error(answer, nullptr) > 0)
            static_cast<BusTransport*>(self)->dropRefused();
        return 0;
    }
    void dropRefused() noexcept {
        const sd_bus_slot* const refused = sd_bus_get_current_slot(bus_.get());
        for (auto& [name, slot] : slots_)
            if (slot.get() == refused)
                slot.reset();
        nextAttempt_ = Clock::now() + betweenAttempts;
        wakeup_.signal();
    }

    /// Called by the bus, under the lock.
    static int keep(sd_bus_message* message, void* self, sd_bus_error*) noexcept {
        const char* key = nullptr;
        const void* bytes = nullptr;
        std::size_t size = 0;
        if (sd_bus_message_has_signature(message, signature) > 0 &&
            sd_bus_message_read(message, "s", &key) > 0 &&
            sd_bus_message_read_array(message, 'y', &bytes, &size) > 0 && size <= maxWireSize) {
            const auto* const first = static_cast<const std::byte*>(bytes);
            unlessOutOfMemory([&] {
                static_cast<BusTransport*>(self)->received_.emplace_back(first, first + size);
            });
        }
        return 0;
    }

    void run() {
        for (;;)
            if (!unlessOutOfMemory([this] { takeTurn(); }))
                std::this_thread::sleep_for(betweenAttempts);
    }

    void takeTurn() {
        if (!deliver())
            return reconnect();
        askAgain();
        await();
    }

    /// Passes on some of what has arrived; false when the bus has gone.
    bool deliver() {
        const std::lock_guard inOrder(delivery_);
        std::vector<Data> messages;
        int processed = 1;
        {
            const std::lock_guard lock(mutex_);
            for (int i = 0; i < messagesInARow && processed > 0; ++i)
                processed = bus_ ? sd_bus_process(bus_.get(), nullptr) : -ENOTCONN;
            messages.swap(received_);
        }
        if (processed != 0)
            wakeup_.signal(); // there is more, or nothing any more
        for (const Data& message : messages)
            receive_(message);
        return processed >= 0;
    }

    void await() {
        std::array<pollfd, 3> entries{};
        entries[1] = {wakeup_.descriptor(), POLLIN, 0};
        entries[2] = {watch_.descriptor(), POLLIN, 0};
        std::uint64_t until = 0;
        {
            const std::lock_guard lock(mutex_);
            const int events = sd_bus_get_events(bus_.get());
            entries[0] = {sd_bus_get_fd(bus_.get()),
                          static_cast<short>(mainReceives_ ? events & POLLOUT : events), 0};
            if (sd_bus_get_timeout(bus_.get(), &until) < 0)
                until = 0;
            if (nextAttempt_ != never)
                until = std::min(until, microseconds(nextAttempt_));
        }
        ::poll(entries.data(), entries.size(), timeLeft(until));
        wakeup_.clear();
        if (entries[2].revents != 0)
            judgeMainThread();
    }

    /// Takes the turn from the main thread when that has been busy for long.
    void judgeMainThread() {
        const std::lock_guard lock(mutex_);
        watch_.clear();
        watching_ = false; // first, so that what the main thread does from now on starts it anew
        const Clock::time_point end = idleEnd_;
        if (end == never)
            return;
        const auto left = patience - (Clock::now() - end);
        if (left <= left.zero())
            mainReceives_ = false;
        else if (!watching_.exchange(true))
            watch_.start(left);
    }

    /// On the monotonic clock.
    static std::uint64_t microseconds(Clock::time_point time) {
        const auto count =
            std::chrono::duration_cast<std::chrono::microseconds>(time.time_since_epoch());
        return static_cast<std::uint64_t>(count.count());
    }

    /// In milliseconds, rounded up, until a time in microseconds on the monotonic clock; -1 for
    /// never.
    static int timeLeft(std::uint64_t until) {
        if (until == UINT64_MAX)
            return -1;
        const std::uint64_t current = microseconds(Clock::now());
        if (until <= current)
            return 0;
        return static_cast<int>(std::min<std::uint64_t>((until - current) / 1000 + 1, 60'000));
    }

    void reconnect() {
        LibraryLog::write({LibraryLog::Level::warning, "messagebus",
                           "The session bus has gone; what processes post to each other is lost "
                           "until it is back."});
        {
            const std::lock_guard lock(mutex_);
            mainReceives_ = false;
            for (auto& [name, slot] : slots_)
                slot.reset();
            bus_.reset();
        }
        for (Bus opened = openBus();; opened = openBus()) {
            if (opened) {
                const std::lock_guard lock(mutex_);
                bus_ = std::move(opened);
                nextAttempt_ = Clock::now();
                break;
            }
            std::this_thread::sleep_for(betweenAttempts);
        }
        askAgain();
        LibraryLog::write(
            {LibraryLog::Level::information, "messagebus", "The session bus is back."});
    }

    std::mutex mutex_;
    Bus bus_;                               // null while the bus is gone
    std::map<std::string, Slot> slots_;     // null for what the bus has not granted
    Clock::time_point nextAttempt_ = never; // to ask for that
    std::vector<Data> received_;
    std::mutex delivery_;                    // keeps the order of what is passed on; before mutex_
    std::atomic<bool> mainReceives_ = false; // changed under the lock
    std::atomic<Clock::time_point> idleEnd_ = never; // of the main thread; `never` while it is idle
    std::atomic<bool> watching_ = false;             // the timer runs
    const Timer watch_;
    const Wakeup wakeup_;
    const Receive receive_;
};

} // namespace

extern "C" void zorvanMakeBusTransport(Transport::Receive receive,
                                       std::unique_ptr<Transport>& transport) {
    if (Bus bus = openBus())
        transport = std::make_unique<BusTransport>(std::move(bus), std::move(receive));
}

} // namespace zorvan::internal
