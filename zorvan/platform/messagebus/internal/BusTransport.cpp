#include <zorvan/platform/messagebus/internal/FileDescriptor.h>
#include <zorvan/platform/messagebus/internal/Transport.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <poll.h>
#include <string>
#include <string_view>
#include <systemd/sd-bus.h>
#include <thread>
#include <utility>
#include <vector>

namespace zorvan::internal {

namespace {

constexpr const char* objectPath = "/org/zorvan/Notifications";
constexpr const char* interfaceName = "org.zorvan.Notifications1";
constexpr const char* signalName = "Posted";
constexpr const char* signature = "say";         // the sort key and the message
constexpr std::uint64_t callTimeout = 5'000'000; // microseconds
constexpr auto reconnectInterval = std::chrono::seconds(1);
constexpr int messagesInARow = 64;

using Bus = std::unique_ptr<sd_bus, decltype(&sd_bus_flush_close_unref)>;
using Message = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;
using Slot = std::unique_ptr<sd_bus_slot, decltype(&sd_bus_slot_unref)>;

Bus openBus() {
    sd_bus* bus = nullptr;
    const bool opened = sd_bus_open_user(&bus) >= 0;
    Bus owned(bus, &sd_bus_flush_close_unref);
    const char* name = nullptr;
    if (!opened || sd_bus_set_method_call_timeout(bus, callTimeout) < 0 ||
        sd_bus_get_unique_name(bus, &name) < 0)
        return {nullptr, &sd_bus_flush_close_unref};
    return owned;
}

/// A name as the bus sorts by it: in characters that mean nothing in its rules, whose length is
/// limited, so the start of a long name stands for it.
std::string sortKey(std::string_view name) {
    constexpr std::size_t maxLength = 512;
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string key;
    for (const char c : name) {
        const bool isPlain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') ||
                             (c >= 'a' && c <= 'z') || c == '.' || c == '_' || c == '-';
        const auto byte = static_cast<unsigned char>(c);
        if (isPlain)
            key += c;
        else
            (key += '%').append({digits[byte >> 4], digits[byte & 15]});
        if (key.size() >= maxLength)
            break;
    }
    return key;
}

std::string matchRule(const std::string& name) {
    return std::string("type='signal',interface='") + interfaceName + "',member='" + signalName +
           "',arg0='" + sortKey(name) + "'";
}

/// The connection is used under a lock, by the threads that send and by one that polls.
class BusTransport final : public Transport {
public:
    BusTransport(Bus bus, Receive receive) : bus_(std::move(bus)), receive_(std::move(receive)) {
        std::thread([this] { run(); }).detach();
    }

    void want(const std::string& name) override {
        const std::lock_guard lock(mutex_);
        addMatch(slots_.emplace(name, Slot(nullptr, &sd_bus_slot_unref)).first);
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
        const Message signal(made, &sd_bus_message_unref);
        if (sd_bus_message_append(made, "s", sortKey(name).c_str()) < 0 ||
            sd_bus_message_append_array(made, 'y', message.data(), message.size()) < 0)
            return;
        sd_bus_send(bus_.get(), made, nullptr);
        std::uint64_t unsent = 0;
        if (sd_bus_get_n_queued_write(bus_.get(), &unsent) < 0 || unsent > 0)
            wakeup_.signal();
    }

private:
    using Slots = std::map<std::string, Slot>;

    void addMatch(Slots::iterator place) {
        sd_bus_slot* slot = nullptr;
        if (bus_ && sd_bus_add_match(bus_.get(), &slot, matchRule(place->first).c_str(),
                                     &BusTransport::keep, this) >= 0)
            place->second.reset(slot);
    }

    /// Called by the bus, under the lock.
    static int keep(sd_bus_message* message, void* self, sd_bus_error*) noexcept {
        const char* key = nullptr;
        const void* bytes = nullptr;
        std::size_t size = 0;
        if (sd_bus_message_has_signature(message, signature) > 0 &&
            sd_bus_message_read(message, "s", &key) > 0 &&
            sd_bus_message_read_array(message, 'y', &bytes, &size) > 0) {
            const auto* const first = static_cast<const std::byte*>(bytes);
            static_cast<BusTransport*>(self)->received_.emplace_back(first, first + size);
        }
        return 0;
    }

    void run() {
        for (;;) {
            const bool connected = process();
            for (const Data& message : std::exchange(delivering_, {}))
                receive_(message);
            if (!connected)
                reconnect();
            else
                await();
        }
    }

    /// Moves what has arrived to `delivering_`; false when the bus has gone.
    bool process() {
        const std::lock_guard lock(mutex_);
        int processed = 1;
        for (int i = 0; i < messagesInARow && processed > 0; ++i)
            processed = sd_bus_process(bus_.get(), nullptr);
        delivering_.swap(received_);
        return processed >= 0;
    }

    void await() {
        std::array<pollfd, 2> entries{};
        entries[1] = {wakeup_.descriptor(), POLLIN, 0};
        std::uint64_t until = 0;
        {
            const std::lock_guard lock(mutex_);
            entries[0] = {sd_bus_get_fd(bus_.get()),
                          static_cast<short>(sd_bus_get_events(bus_.get())), 0};
            if (sd_bus_get_timeout(bus_.get(), &until) < 0)
                until = 0;
        }
        ::poll(entries.data(), entries.size(), timeLeft(until));
        wakeup_.clear();
    }

    /// In milliseconds, rounded up, until a time in microseconds on the monotonic clock.
    static int timeLeft(std::uint64_t until) {
        using namespace std::chrono;
        const auto now = duration_cast<microseconds>(steady_clock::now().time_since_epoch());
        const auto current = static_cast<std::uint64_t>(now.count());
        if (until <= current)
            return 0;
        return static_cast<int>(std::min<std::uint64_t>((until - current) / 1000 + 1, 60'000));
    }

    void reconnect() {
        {
            const std::lock_guard lock(mutex_);
            for (auto& [name, slot] : slots_)
                slot.reset();
            bus_.reset();
        }
        for (Bus opened = openBus();; opened = openBus()) {
            if (opened) {
                const std::lock_guard lock(mutex_);
                bus_ = std::move(opened);
                for (auto place = slots_.begin(); place != slots_.end(); ++place)
                    addMatch(place);
                return;
            }
            std::this_thread::sleep_for(reconnectInterval);
        }
    }

    std::mutex mutex_;
    Bus bus_; // null while the bus is gone
    Slots slots_;
    std::vector<Data> received_;
    std::vector<Data> delivering_; // of the polling thread
    const Wakeup wakeup_;
    const Receive receive_;
};

} // namespace

std::unique_ptr<Transport> makeBusTransport(Transport::Receive receive) {
    Bus bus = openBus();
    if (!bus)
        return nullptr;
    return std::make_unique<BusTransport>(std::move(bus), std::move(receive));
}

} // namespace zorvan::internal
