// Telling 1, 10 and 1,000 observers of a change: ours by name and sender, beside the signals of
// Boost and of Qt (direct connections).

#include <zorvan/platform/dispatch/NSNotificationCenter.h>

#include <QSignalMapper>
#include <benchmark/benchmark.h>
#include <boost/signals2/signal.hpp>

#include <future>
#include <memory>
#include <string>
#include <thread>

namespace {

using namespace zorvan;

const NSNotificationName changed = "DocumentDidChangeNotification";

struct Document {};

void postOurs(benchmark::State& state) {
    const auto center = NSNotificationCenter::create();
    const auto document = std::make_shared<Document>();
    std::int64_t told = 0;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        center->addObserver(changed, document, nullptr, [&](const Notification&) { ++told; });
    for (auto _ : state)
        center->post(changed, document);
    if (told != static_cast<std::int64_t>(state.iterations()) * state.range(0))
        state.SkipWithError("some were not told");
}

void amongOtherNames(benchmark::State& state) {
    const auto center = NSNotificationCenter::create();
    const auto document = std::make_shared<Document>();
    std::int64_t told = 0;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        center->addObserver("Other" + std::to_string(i), nullptr, nullptr,
                            [](const Notification&) {});
    center->addObserver(changed, document, nullptr, [&](const Notification&) { ++told; });
    for (auto _ : state)
        center->post(changed, document);
    benchmark::DoNotOptimize(told);
}

void nobodyListens(benchmark::State& state) {
    const auto center = NSNotificationCenter::create();
    const auto document = std::make_shared<Document>();
    for (std::int64_t i = 0; i < state.range(0); ++i)
        center->addObserver("Other" + std::to_string(i), nullptr, nullptr,
                            [](const Notification&) {});
    for (auto _ : state)
        center->post(changed, document);
}

void postBoostSignals2(benchmark::State& state) {
    boost::signals2::signal<void(const Document&)> signal;
    const Document document;
    std::int64_t told = 0;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        signal.connect([&](const Document&) { ++told; });
    for (auto _ : state)
        signal(document);
    benchmark::DoNotOptimize(told);
}

void postQtDirect(benchmark::State& state) {
    QSignalMapper document; // for its signal with one argument, which anybody may emit
    std::int64_t told = 0;
    for (std::int64_t i = 0; i < state.range(0); ++i)
        QObject::connect(
            &document, &QSignalMapper::mappedInt, &document, [&](int) { ++told; },
            Qt::DirectConnection);
    for (auto _ : state)
        emit document.mappedInt(1);
    benchmark::DoNotOptimize(told);
}

BENCHMARK(postOurs)->Arg(1)->Arg(10)->Arg(1000);
BENCHMARK(postQtDirect)->Arg(1)->Arg(10)->Arg(1000);
BENCHMARK(postBoostSignals2)->Arg(1)->Arg(10)->Arg(1000);
BENCHMARK(amongOtherNames)->Arg(0)->Arg(10'000);
BENCHMARK(nobodyListens)->Arg(0)->Arg(10)->Arg(10'000);

} // namespace

int main(int argc, char** argv) {
    // As in any desktop program there is another thread, so that counts and locks cost what they
    // do.
    std::promise<void> finished;
    std::thread other([&] { finished.get_future().wait(); });
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    finished.set_value();
    other.join();
}
