// Walks a tree of 200,000 files for the pictures in it, beside find(1).
//
// find runs as a process of its own, so the walk is timed the same way: this program runs itself
// with
// --walk. The time of the walk alone, without starting a process, is reported as well.

#include <zorvan/files/FileIterator.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

constexpr std::size_t folderCount = 2000;
constexpr std::size_t filesPerFolder = 100;
constexpr std::size_t pictureCount = folderCount * filesPerFolder / 4;

class Tree {
public:
    Tree() {
        std::string name = std::filesystem::temp_directory_path() / "directory-walk-XXXXXX";
        if (!mkdtemp(name.data())) {
            std::perror("mkdtemp");
            std::exit(1);
        }
        path_ = name;
        for (std::size_t i = 0; i < folderCount; ++i)
            fill(path_ / std::to_string(i % 40) / std::to_string(i));
    }
    ~Tree() { std::filesystem::remove_all(path_); }

    std::string path() const { return path_; }

private:
    static void fill(const std::filesystem::path& folder) {
        constexpr std::array extensions{".jpg", ".txt", ".JPG.xmp", ".html"};
        std::filesystem::create_directories(folder);
        for (std::size_t i = 0; i < filesPerFolder; ++i) {
            const std::string name = "IMG_" + std::to_string(1000 + i) + extensions[i % 4];
            const int file = open((folder / name).c_str(), O_CREAT | O_WRONLY, 0600);
            close(file);
        }
    }

    std::filesystem::path path_;
};

const Tree& tree() {
    static const Tree tree;
    return tree;
}

template <class Visit>
void forEachPicture(const std::string& folder, Visit visit) {
    const auto files = zorvan::FileIterator::create({zorvan::URL({.fileURLWithPath = folder})});
    files->setSkipSubdirectoryDescendants(false);
    files->setSkipHiddenFiles(false);
    files->setAllowedFiles({{"jpg"}});
    while (const auto url = files->next())
        visit(*url);
}

/// Prints the paths as find does, so that both programs do the same work.
int printPictures(const std::string& folder) {
    forEachPicture(folder, [](const zorvan::URL& url) {
        std::fwrite(url.path().data(), 1, url.path().size(), stdout);
        std::fputc('\n', stdout);
    });
    return 0;
}

bool run(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    const int failure =
        posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    return failure == 0 && waitpid(child, &status, 0) == child && status == 0;
}

void walkInProcess(benchmark::State& state) {
    for (auto _ : state) {
        std::size_t count = 0;
        forEachPicture(tree().path(), [&](const zorvan::URL&) { ++count; });
        if (count != pictureCount)
            state.SkipWithError("a picture was missed");
    }
}

/// Turns of ours and find alternate, so that noise meets both.
void walkBesideFind(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    const auto seconds = [](const std::vector<std::string>& words) {
        const auto start = Clock::now();
        if (!run(words))
            std::exit(1);
        return std::chrono::duration<double>(Clock::now() - start).count();
    };
    std::vector<double> ours, finds;
    const std::string self = std::filesystem::read_symlink("/proc/self/exe");
    for (auto _ : state) {
        ours.push_back(seconds({self, "--walk", tree().path()}));
        finds.push_back(seconds({"find", tree().path(), "-type", "f", "-iname", "*.jpg"}));
    }
    const auto median = [](std::vector<double>& times) {
        const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
        std::nth_element(times.begin(), middle, times.end());
        return *middle;
    };
    state.counters["ours_ms"] = median(ours) * 1000;
    state.counters["find_ms"] = median(finds) * 1000;
    state.counters["ratio"] = median(ours) / median(finds);
}

BENCHMARK(walkInProcess)->Unit(benchmark::kMillisecond)->Iterations(11);
BENCHMARK(walkBesideFind)->Unit(benchmark::kMillisecond)->Iterations(21);

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--walk") == 0)
        return printPictures(argv[2]);
    benchmark::Initialize(&argc, argv);
    tree();
    benchmark::RunSpecifiedBenchmarks();
}
