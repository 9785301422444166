// sRGB to L*a*b* in double precision of a buffer of four million pixels, beside LittleCMS.

#include <zorvan/colour/convertToLAB.h>

#include <benchmark/benchmark.h>
#include <lcms2.h>

#include <cstdint>
#include <random>
#include <vector>

using namespace zorvan;

namespace {

constexpr std::size_t pixelCount = 4'000'000;

std::vector<std::uint8_t> noise() {
    std::mt19937 random(1);
    std::vector<std::uint8_t> bytes(3 * pixelCount);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

// Slow changes along the rows, as in a photo of the sky.
std::vector<std::uint8_t> gradient() {
    std::vector<std::uint8_t> bytes(3 * pixelCount);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>((i / 3 / 16 + i % 3 * 50) & 255);
    return bytes;
}

void one_ours(benchmark::State& state, std::vector<std::uint8_t> (*make)()) {
    const auto bytes = make();
    std::vector<LAB> labs(pixelCount);
    for (auto _ : state) {
        for (std::size_t i = 0; i < pixelCount; ++i)
            labs[i] = RGB(bytes[3 * i], bytes[3 * i + 1], bytes[3 * i + 2]).xyz().lab();
        benchmark::DoNotOptimize(labs.data());
    }
}

void bulk_ours(benchmark::State& state, std::vector<std::uint8_t> (*make)()) {
    const auto bytes = make();
    std::vector<LAB> labs(pixelCount);
    for (auto _ : state) {
        convertToLAB(bytes, labs);
        benchmark::DoNotOptimize(labs.data());
    }
}

void bulk_LittleCMS(benchmark::State& state, std::vector<std::uint8_t> (*make)()) {
    const auto bytes = make();
    std::vector<LAB> labs(pixelCount);
    const cmsHPROFILE from = cmsCreate_sRGBProfile();
    const cmsHPROFILE to = cmsCreateLab4Profile(nullptr);
    const cmsHTRANSFORM transform =
        cmsCreateTransform(from, TYPE_RGB_8, to, TYPE_Lab_DBL, INTENT_RELATIVE_COLORIMETRIC, 0);
    for (auto _ : state) {
        cmsDoTransform(transform, bytes.data(), labs.data(), pixelCount);
        benchmark::DoNotOptimize(labs.data());
    }
    cmsDeleteTransform(transform);
    cmsCloseProfile(from);
    cmsCloseProfile(to);
}

// The peer has one way for both of ours.
constexpr auto one_LittleCMS = bulk_LittleCMS;

} // namespace

BENCHMARK_CAPTURE(one_ours, noise, noise)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(one_LittleCMS, noise, noise)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(bulk_ours, noise, noise)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(bulk_LittleCMS, noise, noise)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(bulk_ours, gradient, gradient)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(bulk_LittleCMS, gradient, gradient)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
