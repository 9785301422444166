// Copies a file of 1 GiB safely, beside cp(1).
//
// A copy that replaces waits for the disk, which cp does not: so cp is also timed with a sync(1) of
// its copy, and as what keeps the promise of the safe copy by hand: a copy beside, synchronised and
// moved into place.

#include <zorvan/files/NSFileManager.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <unistd.h>
#include <utility>
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

const Source& files() {
    static const Source files;
    return files;
}

void copySafely() {
    zorvan::NSFileManager::defaultManager()->overwritingCopy(
        zorvan::URL({.fileURLWithPath = files().source()}),
        zorvan::URL({.fileURLWithPath = files().copy()}));
}

/// Runs a command with the source as $1, the copy as $2.
std::function<void()> shell(const std::string& command) {
    return [command] {
        run("set -- " + files().source().string() + " " + files().copy().string() + "; " + command);
    };
}

/// Each turn starts without a copy, or with a file in its place, and with an idle disk.
void time(benchmark::State& state, bool replaces, const std::function<void()>& work) {
    for (auto _ : state) {
        fs::remove(files().copy());
        if (replaces)
            run("cp --reflink=never " + files().source().string() + " " + files().copy().string());
        ::sync();
        const auto start = std::chrono::steady_clock::now();
        work();
        state.SetIterationTime(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
}

} // namespace

int main(int argc, char** argv) {
    const std::pair<const char*, std::function<void()>> contenders[] = {
        {"ours", copySafely},
        {"cp", shell("cp --reflink=auto $1 $2")},
        {"cp and sync", shell("cp --reflink=auto $1 $2 && sync $2")},
        {"cp, sync and mv", shell("cp --reflink=auto $1 $2.new && sync $2.new && mv $2.new $2")}};
    for (const bool replaces : {false, true})
        for (const auto& [name, work] : contenders)
            benchmark::RegisterBenchmark(
                ((replaces ? "copy over a file/" : "copy/") + std::string(name)).c_str(),
                [replaces, work](benchmark::State& state) { time(state, replaces, work); })
                ->UseManualTime()
                ->Unit(benchmark::kMillisecond)
                ->Iterations(1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
