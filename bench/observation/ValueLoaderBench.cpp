// A request for a value that is loaded, beside a call through a function pointer that reads an
// atomic.

#include <zorvan/observation/ValueLoader.h>
#include <zorvan/platform/dispatch/MainQueue.h>

#include <benchmark/benchmark.h>

#include <atomic>

namespace {

using namespace zorvan;

void requestOurs(benchmark::State& state) {
    const auto loader =
        ValueLoader<int>::create(NSOperationQueue::create(), [] { return std::optional(1); });
    loader->request(MainQueue::stop);
    MainQueue::run();
    std::int64_t calls = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(loader->request([&] { ++calls; }));
    if (calls != static_cast<std::int64_t>(state.iterations()))
        state.SkipWithError("not loaded");
}

void valueOurs(benchmark::State& state) {
    const auto loader =
        ValueLoader<int>::create(NSOperationQueue::create(), [] { return std::optional(1); });
    loader->request(MainQueue::stop);
    MainQueue::run();
    for (auto _ : state)
        benchmark::DoNotOptimize(*loader->value());
}

void requestCallAndAtomicRead(benchmark::State& state) {
    static std::atomic<int> value = 1;
    static std::int64_t calls = 0;
    void (*volatile call)() = [] { ++calls; };
    for (auto _ : state) {
        benchmark::DoNotOptimize(value.load(std::memory_order_acquire));
        call();
    }
}

BENCHMARK(requestOurs);
BENCHMARK(valueOurs);
BENCHMARK(requestCallAndAtomicRead);

} // namespace

BENCHMARK_MAIN();
