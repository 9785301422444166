// Copies a file of 1 GiB safely, beside cp(1).
//
// cp does not wait for the disk, the safe copy does, so cp is timed with and without a sync(1) of
// its copy. Turns alternate, so that noise meets all.

#include <zorvan/files/NSFileManager.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A folder with a file of a gigabyte that no file system can store shorter.
class Source {
public:
    Source() {
        std::string name = fs::temp_directory_path() / "safe-copy-XXXXXX";
        if (!mkdtemp(name.data())) {
            std::perror("mkdtemp");
            std::exit(1);
        }
        folder_ = name;
        std::ofstream file(source(), std::ios::binary);
        std::mt19937_64 random(1);
        std::vector<std::uint64_t> block(std::size_t{1} << 17);
        for (int i = 0; i < 1024; ++i) {
            std::generate(block.begin(), block.end(), random);
            file.write(reinterpret_cast<const char*>(block.data()),
                       static_cast<std::streamsize>(block.size() * sizeof block[0]));
        }
    }
    ~Source() { fs::remove_all(folder_); }

    fs::path source() const { return folder_ / "source"; }
    fs::path copy() const { return folder_ / "copy"; }

private:
    fs::path folder_;
};

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0)
        std::exit(1);
}

template <class Work>
double seconds(Work work) {
    ::sync();
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

void copyBesideCp(benchmark::State& state) {
    const bool replaces = state.range(0) != 0;
    const Source files;
    const std::string cp =
        "cp --reflink=auto " + files.source().string() + " " + files.copy().string();
    const auto prepare = [&] {
        fs::remove(files.copy());
        if (replaces)
            fs::copy_file(files.source(), files.copy());
    };
    std::vector<double> ours, plain, synced;
    for (auto _ : state) {
        prepare();
        ours.push_back(seconds([&] {
            zorvan::NSFileManager::defaultManager()->overwritingCopy(
                zorvan::URL({.fileURLWithPath = files.source()}),
                zorvan::URL({.fileURLWithPath = files.copy()}));
        }));
        prepare();
        plain.push_back(seconds([&] { run(cp); }));
        prepare();
        synced.push_back(seconds([&] { run(cp + " && sync " + files.copy().string()); }));
    }
    state.counters["ours_ms"] = median(ours) * 1000;
    state.counters["cp_ms"] = median(plain) * 1000;
    state.counters["cp_and_sync_ms"] = median(synced) * 1000;
    state.counters["ratio_to_cp"] = median(ours) / median(plain);
    state.counters["ratio"] = median(ours) / median(synced);
}

BENCHMARK(copyBesideCp)
    ->Arg(0)
    ->Arg(1)
    ->ArgName("replaces")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

} // namespace

BENCHMARK_MAIN();
