// A million light and a thousand heavy iterations, beside a plain oneTBB loop of the same grain.

#include <zorvan/platform/dispatch/concurrentPerform.h>

#include <benchmark/benchmark.h>
#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>

#include <cmath>
#include <vector>

namespace {

constexpr std::int64_t lightCount = 1'000'000;
constexpr std::int64_t heavyCount = 1'000;

float light(std::int64_t i) { return static_cast<float>(i) * 0.5F + 1; }

float heavy(std::int64_t i) {
    double sum = 0;
    for (int k = 1; k < 2000; ++k)
        sum += std::sin(static_cast<double>(i + k));
    return static_cast<float>(sum);
}

template <class Work>
void ours(benchmark::State& state, std::int64_t count, Work work) {
    std::vector<float> results(static_cast<std::size_t>(count));
    for (auto _ : state) {
        zorvan::concurrentPerform(
            count, [&](std::int64_t i) { results[static_cast<std::size_t>(i)] = work(i); });
        benchmark::ClobberMemory();
    }
}

template <class Work>
void oneTBB(benchmark::State& state, std::int64_t count, Work work) {
    std::vector<float> results(static_cast<std::size_t>(count));
    for (auto _ : state) {
        tbb::parallel_for(tbb::blocked_range<std::int64_t>(0, count), [&](const auto& range) {
            for (std::int64_t i = range.begin(); i < range.end(); ++i)
                results[static_cast<std::size_t>(i)] = work(i);
        });
        benchmark::ClobberMemory();
    }
}

void lightOurs(benchmark::State& state) { ours(state, lightCount, light); }
void lightOneTBB(benchmark::State& state) { oneTBB(state, lightCount, light); }
void heavyOurs(benchmark::State& state) { ours(state, heavyCount, heavy); }
void heavyOneTBB(benchmark::State& state) { oneTBB(state, heavyCount, heavy); }

BENCHMARK(lightOurs)->UseRealTime();
BENCHMARK(lightOneTBB)->UseRealTime();
BENCHMARK(heavyOurs)->UseRealTime();
BENCHMARK(heavyOneTBB)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
