// A notification to another process and its answer, over a bus of its own, beside a bare client of
// the same bus that does nothing but send and wait.

#include "Process.h"

#include <zorvan/platform/dispatch/MainQueue.h>
#include <zorvan/platform/messagebus/NSDistributedNotificationCenter.h>

#include <benchmark/benchmark.h>
#include <systemd/sd-bus.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

using namespace zorvan;

const NSNotificationName ping = "Ping";
const NSNotificationName pong = "Pong";

NSDistributedNotificationCenter& center() {
    return *NSDistributedNotificationCenter::defaultCenter();
}

PropertyList::Dictionary payload() { return {{"number", 1}}; }

/// A client with one connection and no thread of its own.
class BareClient {
public:
    BareClient(const char* heard, std::function<void()> handler) : handler_(std::move(handler)) {
        const std::string rule =
            "type='signal',interface='bench.Bare',member='" + std::string(heard) + "'";
        if (sd_bus_open_user(&bus_) < 0 ||
            sd_bus_add_match(
                bus_, nullptr, rule.c_str(),
                [](sd_bus_message* message, void* self, sd_bus_error*) {
                    const void* bytes = nullptr;
                    std::size_t size = 0;
                    sd_bus_message_read_array(message, 'y', &bytes, &size);
                    static_cast<BareClient*>(self)->handler_();
                    return 0;
                },
                this) < 0)
            std::abort();
    }

    void send(const char* name) {
        constexpr char bytes[40] = {};
        sd_bus_message* message = nullptr;
        sd_bus_message_new_signal(bus_, &message, "/bench", "bench.Bare", name);
        sd_bus_message_append_array(message, 'y', bytes, sizeof bytes);
        sd_bus_send(bus_, message, nullptr);
        sd_bus_message_unref(message);
    }

    void serve() {
        if (sd_bus_process(bus_, nullptr) == 0)
            sd_bus_wait(bus_, UINT64_MAX);
    }

private:
    sd_bus* bus_ = nullptr;
    std::function<void()> handler_;
};

void echoOurs() {
    center().addObserver(ping, nullptr, nullptr,
                         [](const Notification&) { center().post(pong, {}, payload()); });
    std::puts("ready");
    std::fflush(stdout);
    MainQueue::run();
}

void echoBare() {
    BareClient client("Ping", [&] { client.send("Pong"); });
    std::puts("ready");
    std::fflush(stdout);
    for (;;)
        client.serve();
}

void roundTripOurs(benchmark::State& state) {
    Process other({"/proc/self/exe", "--echo-ours"}, {});
    other.hear();
    const auto observer = center().addObserver(pong, nullptr, nullptr,
                                               [](const Notification&) { MainQueue::stop(); });
    for (auto _ : state) {
        center().post(ping, {}, payload());
        MainQueue::run();
    }
    center().removeObserver(observer);
}

void roundTripBareClient(benchmark::State& state) {
    Process other({"/proc/self/exe", "--echo-bare"}, {});
    other.hear();
    bool answered = false;
    BareClient client("Pong", [&] { answered = true; });
    for (auto _ : state) {
        answered = false;
        client.send("Ping");
        while (!answered)
            client.serve();
    }
}

BENCHMARK(roundTripOurs)->UseRealTime();
BENCHMARK(roundTripBareClient)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    const std::string_view mode = argc > 1 ? argv[1] : "";
    if (mode == "--echo-ours")
        echoOurs();
    if (mode == "--echo-bare")
        echoBare();
    const auto directory =
        std::filesystem::temp_directory_path() / ("zorvan-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directory(directory);
    const std::string address = "unix:path=" + (directory / "bus").string();
    {
        Process bus(
            {"dbus-daemon", "--session", "--nofork", "--print-address", "--address=" + address},
            {});
        bus.hear();
        ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
        benchmark::Initialize(&argc, argv);
        benchmark::RunSpecifiedBenchmarks();
    }
    std::filesystem::remove_all(directory);
}
