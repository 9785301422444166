// Copies a file of 1 GiB safely, beside cp(1).
//
// A copy that replaces waits for the disk, which cp does not: so cp is also timed with a sync(1) of
// its copy, and as what keeps the promise of the safe copy by hand: a copy beside, synchronised and
// moved into place. Turns alternate, so that noise meets all.

#include <zorvan/files/NSFileManager.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
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

struct Contender {
    const char* name;
    std::function<void()> work;
};

void copyBesideCp(benchmark::State& state) {
    const bool replaces = state.range(0) != 0;
    const Source files;
    const std::string source = files.source(), copy = files.copy();
    const std::string cp = "cp --reflink=auto " + source + " ";
    const auto ours = [&] {
        zorvan::NSFileManager::defaultManager()->overwritingCopy(
            zorvan::URL({.fileURLWithPath = source}), zorvan::URL({.fileURLWithPath = copy}));
    };
    const Contender contenders[] = {{"ours", ours},
                                    {"cp", [&] { run(cp + copy); }},
                                    {"cp_and_sync", [&] { run(cp + copy + " && sync " + copy); }},
                                    {"cp_sync_and_mv", [&] {
                                         const std::string beside = copy + ".new";
                                         run(cp + beside + " && sync " + beside + " && mv " +
                                             beside + " " + copy);
                                     }}};
    std::map<std::string, std::vector<double>> times;
    for (auto _ : state)
        for (const auto& [name, work] : contenders) {
            fs::remove(files.copy());
            if (replaces)
                run("cp --reflink=never " + source + " " + copy);
            times[name].push_back(seconds(work));
        }
    const double own = median(times["ours"]);
    for (const auto& [name, values] : times) {
        state.counters[name + "_ms"] = median(values) * 1000;
        state.counters["ours_to_" + name] = own / median(values);
    }
}

BENCHMARK(copyBesideCp)
    ->Arg(0)
    ->Arg(1)
    ->ArgName("replaces")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

} // namespace

BENCHMARK_MAIN();
