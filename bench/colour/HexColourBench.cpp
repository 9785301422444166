// Reading and writing a million hexadecimal colours, beside QColor.

#include <zorvan/colour/RGBA.h>

#include <QColor>
#include <QString>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

using namespace zorvan;

namespace {

constexpr std::size_t count = 1'000'000;

std::vector<std::string> texts() {
    std::mt19937 random(1);
    std::vector<std::string> result;
    for (std::size_t i = 0; i < count; ++i) {
        char text[16];
        std::snprintf(text, sizeof text, "#%06X", static_cast<unsigned>(random() & 0xFFFFFF));
        result.emplace_back(text);
    }
    return result;
}

void ours_read(benchmark::State& state) {
    const auto all = texts();
    for (auto _ : state)
        for (const std::string& text : all)
            benchmark::DoNotOptimize(RGBA::make({.hexString = text}));
}

void QColor_read(benchmark::State& state) {
    std::vector<QString> all;
    for (const std::string& text : texts())
        all.push_back(QString::fromStdString(text));
    for (auto _ : state)
        for (const QString& text : all)
            benchmark::DoNotOptimize(QColor::fromString(text));
}

void ours_write(benchmark::State& state) {
    std::vector<RGBA> all;
    for (const std::string& text : texts())
        all.push_back(*RGBA::make({.hexString = text}));
    for (auto _ : state)
        for (const RGBA& colour : all)
            benchmark::DoNotOptimize(colour.hexString());
}

void QColor_write(benchmark::State& state) {
    std::vector<QColor> all;
    for (const std::string& text : texts())
        all.push_back(QColor::fromString(QString::fromStdString(text)));
    for (auto _ : state)
        for (const QColor& colour : all)
            benchmark::DoNotOptimize(colour.name(QColor::HexRgb));
}

} // namespace

BENCHMARK(ours_read)->Unit(benchmark::kMillisecond);
BENCHMARK(QColor_read)->Unit(benchmark::kMillisecond);
BENCHMARK(ours_write)->Unit(benchmark::kMillisecond);
BENCHMARK(QColor_write)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
