#include <zorvan/collections/FinderOrder.h>

#include <benchmark/benchmark.h>
#include <unicode/ucol.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t names = 100'000;

std::vector<std::string> fileNames(const std::vector<std::string>& words) {
    std::mt19937 random(1);
    std::vector<std::string> result;
    for (std::size_t i = 0; i < names; ++i)
        result.push_back(words[random() % words.size()] + " " + words[random() % words.size()] +
                         "_" + std::to_string(random() % 10'000) + ".jpeg");
    return result;
}

const std::vector<std::string> plain =
    fileNames({"IMG", "Photo", "holiday", "Report final", "draft", "DSC", "Scan", "invoice"});
const std::vector<std::string> accented =
    fileNames({"IMG", "Été", "vacances", "Übersicht", "brouillon", "Ángel", "scan", "東京"});

void sortByFinderOrder(benchmark::State& state, const std::vector<std::string>& source) {
    for (auto _ : state)
        benchmark::DoNotOptimize(zorvan::finderSorted(source).data());
}

std::string sortKey(const UCollator* collator, const std::string& name) {
    UErrorCode status = U_ZERO_ERROR;
    UChar units[256];
    std::int32_t length = 0;
    u_strFromUTF8(units, 256, &length, name.data(), static_cast<std::int32_t>(name.size()),
                  &status);
    std::uint8_t key[512];
    const std::int32_t size = ucol_getSortKey(collator, units, length, key, sizeof key);
    return {reinterpret_cast<const char*>(key), static_cast<std::size_t>(size)};
}

/// What a careful user would write: a key for each name, then a sort of the keys.
void sortByKeys(benchmark::State& state, const std::vector<std::string>& source) {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open("en_US", &status);
    ucol_setStrength(collator, UCOL_PRIMARY);
    ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    for (auto _ : state) {
        std::vector<std::pair<std::string, std::string>> keyed;
        keyed.reserve(source.size());
        for (const auto& name : source)
            keyed.emplace_back(sortKey(collator, name), name);
        std::sort(keyed.begin(), keyed.end(),
                  [](const auto& a, const auto& b) { return a.first < b.first; });
        benchmark::DoNotOptimize(keyed.data());
    }
    ucol_close(collator);
}

const bool registered = [] {
    const auto add = [](const char* name, auto sort, const std::vector<std::string>& source) {
        benchmark::RegisterBenchmark(name, [sort, &source](benchmark::State& state) {
            sort(state, source);
        })->Unit(benchmark::kMillisecond);
    };
    add("sort 100,000 plain names/ours", sortByFinderOrder, plain);
    add("sort 100,000 plain names/sort keys", sortByKeys, plain);
    add("sort 100,000 accented names/ours", sortByFinderOrder, accented);
    add("sort 100,000 accented names/sort keys", sortByKeys, accented);
    return true;
}();

} // namespace
