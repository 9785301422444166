#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

/// What the picture benchmarks share: two workloads timed in turns, so that a noisy neighbour
/// disturbs both alike, and the ratio of their medians.
namespace mediabench {

constexpr int rounds = 25;

inline double milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> spent =
        std::chrono::steady_clock::now() - start;
    return spent.count();
}

inline double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + rounds / 2, values.end());
    return values[rounds / 2];
}

inline void compare(const std::string& name, const std::function<void()>& ours,
                    const std::string& peerName, const std::function<void()>& peer) {
    std::vector<double> ourTimes, peerTimes;
    ours();
    peer();
    for (int i = 0; i < rounds; ++i) {
        peerTimes.push_back(milliseconds(peer));
        ourTimes.push_back(milliseconds(ours));
    }
    const double a = median(ourTimes), b = median(peerTimes);
    std::printf("%-32s %8.2f ms   %-24s %8.2f ms   ratio %.2f\n", name.c_str(), a, peerName.c_str(),
                b, a / b);
}

/// Keeps the compiler from leaving out work whose result nobody looks at.
inline void keep(const void* value) { asm volatile("" : : "g"(value) : "memory"); }

} // namespace mediabench
