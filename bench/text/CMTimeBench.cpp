// Rational times beside those of libavutil: the same random operands, in the same run.

#include <zorvan/text/CMTime.h>

#include <benchmark/benchmark.h>

extern "C" {
#include <libavutil/mathematics.h>
#include <libavutil/rational.h>
}

#include <array>
#include <functional>
#include <random>
#include <string>
#include <vector>

using namespace zorvan;

namespace {

constexpr std::size_t count = 4096;

/// Pairs of times, below an hour so that the peer's 32-bit rationals hold them.
struct Operands {
    std::array<CMTime, count> a, b;
    std::array<AVRational, count> ra, rb;

    explicit Operands(std::vector<std::int32_t> timescales) {
        std::mt19937 random(1);
        const auto fill = [&](CMTime& time, AVRational& rational) {
            const std::int32_t timescale = timescales[random() % timescales.size()];
            const auto value = static_cast<int>(random() % 20000);
            time = CMTimeMake(value, timescale);
            rational = AVRational{value, timescale};
        };
        for (std::size_t i = 0; i < count; ++i) {
            fill(a[i], ra[i]);
            fill(b[i], rb[i]);
        }
    }
};

const Operands& sameScale() {
    static const Operands operands({600});
    return operands;
}
const Operands& mixedScales() {
    static const Operands operands({24, 25, 30, 600, 1000, 44100, 48000, 90000});
    return operands;
}

void add(const Operands& o) {
    for (std::size_t i = 0; i < count; ++i) {
        CMTime sum = o.a[i] + o.b[i];
        benchmark::DoNotOptimize(sum);
    }
}
void peerAdd(const Operands& o) {
    for (std::size_t i = 0; i < count; ++i) {
        AVRational sum = av_add_q(o.ra[i], o.rb[i]);
        benchmark::DoNotOptimize(sum);
    }
}
void compare(const Operands& o) {
    for (std::size_t i = 0; i < count; ++i) {
        int order = CMTimeCompare(o.a[i], o.b[i]);
        benchmark::DoNotOptimize(order);
    }
}
void peerCompare(const Operands& o) {
    for (std::size_t i = 0; i < count; ++i) {
        int order = av_compare_ts(o.ra[i].num, {1, o.ra[i].den}, o.rb[i].num, {1, o.rb[i].den});
        benchmark::DoNotOptimize(order);
    }
}

using Work = void (*)(const Operands&);

void run(benchmark::State& state, Work work, const Operands& operands) {
    for (auto _ : state)
        work(operands);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

} // namespace

int main(int argc, char** argv) {
    const struct {
        const char* name;
        Work ours, peers;
        const Operands& operands;
    } table[] = {
        {"add, one timescale", add, peerAdd, sameScale()},
        {"add, mixed timescales", add, peerAdd, mixedScales()},
        {"compare, one timescale", compare, peerCompare, sameScale()},
        {"compare, mixed timescales", compare, peerCompare, mixedScales()},
    };
    for (const auto& row : table) {
        const std::string name = row.name;
        benchmark::RegisterBenchmark((name + "/zorvan").c_str(), run, row.ours,
                                     std::cref(row.operands));
        benchmark::RegisterBenchmark((name + "/libavutil").c_str(), run, row.peers,
                                     std::cref(row.operands));
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
