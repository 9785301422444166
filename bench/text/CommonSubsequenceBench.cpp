#include <zorvan/text/String.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t length = 10'000;

std::string randomText(unsigned seed) {
    std::mt19937 random(seed);
    std::string text;
    for (std::size_t i = 0; i < length; ++i)
        text += static_cast<char>('a' + random() % 20);
    return text;
}

const std::string first = randomText(1);
const std::string second = randomText(2);

std::string byPlainTable(const std::string& a, const std::string& b) {
    const std::size_t width = b.size() + 1;
    std::vector<std::int32_t> table((a.size() + 1) * width);
    for (std::size_t i = 1; i <= a.size(); ++i)
        for (std::size_t j = 1; j <= b.size(); ++j)
            table[i * width + j] = a[i - 1] == b[j - 1] ? table[(i - 1) * width + j - 1] + 1
                                                        : std::max(table[(i - 1) * width + j],
                                                                   table[i * width + j - 1]);
    std::string result;
    for (std::size_t i = a.size(), j = b.size(); i >= 1 && j >= 1;) {
        if (table[i * width + j] == table[i * width + j - 1])
            --j;
        else if (table[i * width + j] == table[(i - 1) * width + j])
            --i;
        else {
            result += a[--i];
            --j;
        }
    }
    std::reverse(result.begin(), result.end());
    return result;
}

void ours(benchmark::State& state) {
    if (zorvan::commonSubsequence({first, second}) != byPlainTable(first, second))
        state.SkipWithError("the answers differ");
    for (auto _ : state)
        benchmark::DoNotOptimize(zorvan::commonSubsequence({first, second}));
}

void plainTable(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(byPlainTable(first, second));
}

BENCHMARK(ours)->Name("common subsequence of 10,000/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(plainTable)
    ->Name("common subsequence of 10,000/plain table")
    ->Unit(benchmark::kMillisecond);

} // namespace
