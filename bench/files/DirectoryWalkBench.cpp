// Walks a tree of 200,000 files for the pictures in it, beside find(1).
//
// find runs as a process of its own, so the walk is timed the same way: this program runs itself
// with --walk.

#include <zorvan/files/FileIterator.h>

#include <benchmark/benchmark.h>

#include <array>
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

/// The walk alone, without starting a process.
void walkInProcess(benchmark::State& state) {
    for (auto _ : state) {
        std::size_t count = 0;
        forEachPicture(tree().path(), [&](const zorvan::URL&) { ++count; });
        if (count != pictureCount)
            state.SkipWithError("a picture was missed");
    }
}

struct Ours {
    static std::vector<std::string> command() {
        return {std::filesystem::read_symlink("/proc/self/exe"), "--walk", tree().path()};
    }
};
struct Find {
    static std::vector<std::string> command() {
        return {"find", tree().path(), "-type", "f", "-iname", "*.jpg"};
    }
};

template <class Walk>
void walk(benchmark::State& state) {
    for (auto _ : state)
        if (!run(Walk::command()))
            state.SkipWithError("the program failed");
}

BENCHMARK(walkInProcess)->Unit(benchmark::kMillisecond);
BENCHMARK(walk<Ours>)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(walk<Find>)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--walk") == 0)
        return printPictures(argv[2]);
    benchmark::Initialize(&argc, argv);
    tree();
    benchmark::RunSpecifiedBenchmarks();
}
