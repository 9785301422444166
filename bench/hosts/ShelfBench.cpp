// The window of shelf, without a screen: how soon it is there, and how soon it has all pictures of
// a folder, whatever their number.

#include "window/ShelfWindow.h"

#include <zorvan/hosts/QtWindowHost.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QWidget>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace zorvan;

namespace {

/// Files that no picture is in: what is measured is the window, not a decoder.
class Folder {
public:
    explicit Folder(std::int64_t count)
        : path(fs::temp_directory_path() / ("shelf-bench-" + std::to_string(::getpid()))) {
        fs::create_directories(path);
        for (std::int64_t i = 0; i < count; ++i)
            std::ofstream(path / (std::to_string(i) + ".png")) << i;
    }
    ~Folder() { fs::remove_all(path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const fs::path path;
};

void show(benchmark::State& state, bool isWhole) {
    const Folder folder(state.range(0));
    Options options;
    options.paths = {folder.path};
    for (auto _ : state) {
        const auto shelf = ShelfWindow::create(options);
        shelf->window()->setFrameAutosaveName({});
        const auto host = QtWindowHost::show(shelf->window());
        host->widget().grab();
        while (isWhole && shelf->isWalking())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        host->widget().grab();
    }
}

void shelfIsThere(benchmark::State& state) { show(state, false); }
BENCHMARK(shelfIsThere)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

void shelfHasAll(benchmark::State& state) { show(state, true); }
BENCHMARK(shelfHasAll)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("XDG_CONFIG_HOME", fs::temp_directory_path().c_str(), 1);
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
