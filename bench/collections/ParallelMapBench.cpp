// Mapping a list on every core: heavy transforms beside a parallel loop of oneTBB into a vector
// that has its size already, ten light elements beside a plain loop, and ten million beside two
// threads by hand.

#include <zorvan/collections/Parallel.h>

#include <benchmark/benchmark.h>
#include <oneapi/tbb/parallel_for.h>

#include <cmath>
#include <cstdint>
#include <numeric>
#include <thread>
#include <vector>

using namespace zorvan;

namespace {

std::vector<std::int64_t> numbers(std::size_t count) {
    std::vector<std::int64_t> list(count);
    std::iota(list.begin(), list.end(), 0);
    return list;
}

/// About ten microseconds.
double heavy(std::int64_t seed) {
    double value = static_cast<double>(seed);
    for (int i = 0; i < 1000; ++i)
        value = std::sqrt(value + i);
    return value;
}

double light(std::int64_t number) { return static_cast<double>(number) * 0.5; }

void heavyMapOurs(benchmark::State& state) {
    const auto list = numbers(2000);
    for (auto _ : state)
        benchmark::DoNotOptimize(parallelMap(list, heavy).data());
}

void heavyMapOneTBB(benchmark::State& state) {
    const auto list = numbers(2000);
    for (auto _ : state) {
        std::vector<double> results(list.size());
        oneapi::tbb::parallel_for(std::size_t{0}, list.size(),
                                  [&](std::size_t i) { results[i] = heavy(list[i]); });
        benchmark::DoNotOptimize(results.data());
    }
}

void tenLightOurs(benchmark::State& state) {
    const auto list = numbers(10);
    for (auto _ : state)
        benchmark::DoNotOptimize(parallelMap(list, light).data());
}

void tenLightPlainLoop(benchmark::State& state) {
    const auto list = numbers(10);
    for (auto _ : state) {
        std::vector<double> results;
        results.reserve(list.size());
        for (const std::int64_t number : list)
            results.push_back(light(number));
        benchmark::DoNotOptimize(results.data());
    }
}

void fillMillionsOurs(benchmark::State& state) {
    const auto list = numbers(10'000'000);
    const auto transform = [](std::int64_t number) { return light(number); }; // inlined, as below
    for (auto _ : state)
        benchmark::DoNotOptimize(parallelMap(list, transform).data());
}

void fillMillionsTwoThreads(benchmark::State& state) {
    const auto list = numbers(10'000'000);
    for (auto _ : state) {
        std::vector<double> results(list.size());
        const auto fill = [&](std::size_t from, std::size_t to) {
            for (std::size_t i = from; i < to; ++i)
                results[i] = light(list[i]);
        };
        {
            const std::jthread other(fill, list.size() / 2, list.size());
            fill(0, list.size() / 2);
        }
        benchmark::DoNotOptimize(results.data());
    }
}

BENCHMARK(heavyMapOurs)->UseRealTime();
BENCHMARK(heavyMapOneTBB)->UseRealTime();
BENCHMARK(tenLightOurs)->UseRealTime();
BENCHMARK(tenLightPlainLoop)->UseRealTime();
BENCHMARK(fillMillionsOurs)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(fillMillionsTwoThreads)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
