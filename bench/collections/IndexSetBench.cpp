// Set algebra over a million positions in ten thousand ranges, and over ten thousand single
// positions among as many, beside Boost.ICL and CRoaring.

#include <zorvan/collections/IndexSet.h>

#include <benchmark/benchmark.h>
#include <boost/icl/interval_set.hpp>
#include <roaring/roaring.hh>

#include <cstdlib>
#include <random>

using namespace zorvan;

namespace {

using Interval = boost::icl::interval<std::int64_t>;
using IntervalSet = boost::icl::interval_set<std::int64_t>;

/// Ten thousand ranges of up to `longest` positions, with gaps of 100 on average.
std::vector<IndexSet::Range> scatteredRanges(unsigned seed, std::int64_t longest = 199) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::int64_t> length(1, longest), gap(1, 199);
    std::vector<IndexSet::Range> ranges;
    std::int64_t position = 0;
    for (int i = 0; i < 10'000; ++i) {
        position += gap(random);
        const std::int64_t upper = position + length(random);
        ranges.push_back({position, upper});
        position = upper + 1;
    }
    return ranges;
}

struct Ours {
    using Set = IndexSet;
    static Set make(const std::vector<IndexSet::Range>& ranges) {
        Set set;
        for (const auto range : ranges)
            set.insert(range);
        return set;
    }
    static Set unite(const Set& a, const Set& b) { return a.union_(b); }
    static Set intersect(const Set& a, const Set& b) { return a.intersection(b); }
    static bool contains(const Set& set, std::int64_t index) { return set.contains(index); }
};

struct BoostIcl {
    using Set = IntervalSet;
    static Set make(const std::vector<IndexSet::Range>& ranges) {
        Set set;
        for (const auto range : ranges)
            set.insert(Interval::right_open(range.lower, range.upper));
        return set;
    }
    static Set unite(const Set& a, const Set& b) { return a + b; }
    static Set intersect(const Set& a, const Set& b) { return a & b; }
    static bool contains(const Set& set, std::int64_t index) {
        return boost::icl::contains(set, index);
    }
};

struct CRoaring {
    using Set = Roaring;
    static Set make(const std::vector<IndexSet::Range>& ranges) {
        Set set;
        for (const auto range : ranges)
            set.addRange(static_cast<std::uint64_t>(range.lower),
                         static_cast<std::uint64_t>(range.upper));
        set.runOptimize();
        return set;
    }
    static Set unite(const Set& a, const Set& b) { return a | b; }
    static Set intersect(const Set& a, const Set& b) { return a & b; }
    static bool contains(const Set& set, std::int64_t index) {
        return set.contains(static_cast<std::uint32_t>(index));
    }
};

/// Another pair of sets each time, of 16: a processor that meets one pair over and over learns by
/// heart which side comes next, some ten thousand turns, and no program asks for that.
template <class Peer>
class Pairs {
public:
    explicit Pairs(std::int64_t longest) {
        for (unsigned seed = 0; seed < count; ++seed) {
            firsts_.push_back(Peer::make(scatteredRanges(seed, longest)));
            seconds_.push_back(Peer::make(scatteredRanges(count + seed, longest)));
        }
    }

    template <class Operation>
    void measure(benchmark::State& state, Operation operation) const {
        std::size_t turn = 0;
        for (auto _ : state) {
            benchmark::DoNotOptimize(
                operation(firsts_[turn % count], seconds_[turn / count % count]));
            ++turn;
        }
    }

private:
    static constexpr std::size_t count = 4;
    std::vector<typename Peer::Set> firsts_, seconds_;
};

template <class Peer>
void unionOf(benchmark::State& state) {
    Pairs<Peer>(199).measure(state, Peer::unite);
}

template <class Peer>
void intersectionOf(benchmark::State& state) {
    Pairs<Peer>(199).measure(state, Peer::intersect);
}

template <class Peer>
void unionOfSingles(benchmark::State& state) {
    Pairs<Peer>(1).measure(state, Peer::unite);
}

template <class Peer>
void intersectionOfSingles(benchmark::State& state) {
    Pairs<Peer>(1).measure(state, Peer::intersect);
}

/// A million questions at random positions.
template <class Peer>
void containsMillion(benchmark::State& state) {
    const auto set = Peer::make(scatteredRanges(1));
    std::mt19937 random(3);
    std::vector<std::int64_t> asked(1'000'000);
    for (auto& index : asked)
        index = static_cast<std::int64_t>(random() % 2'000'000);
    for (auto _ : state) {
        std::int64_t found = 0;
        for (const std::int64_t index : asked)
            found += Peer::contains(set, index);
        benchmark::DoNotOptimize(found);
    }
}

BENCHMARK(unionOf<Ours>);
BENCHMARK(unionOf<BoostIcl>);
BENCHMARK(unionOf<CRoaring>);
BENCHMARK(intersectionOf<Ours>);
BENCHMARK(intersectionOf<BoostIcl>);
BENCHMARK(intersectionOf<CRoaring>);
BENCHMARK(unionOfSingles<Ours>);
BENCHMARK(unionOfSingles<BoostIcl>);
BENCHMARK(unionOfSingles<CRoaring>);
BENCHMARK(intersectionOfSingles<Ours>);
BENCHMARK(intersectionOfSingles<BoostIcl>);
BENCHMARK(intersectionOfSingles<CRoaring>);
BENCHMARK(containsMillion<Ours>)->Unit(benchmark::kMillisecond);
BENCHMARK(containsMillion<BoostIcl>)->Unit(benchmark::kMillisecond);
BENCHMARK(containsMillion<CRoaring>)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
