// Windows without a screen.

#include <benchmark/benchmark.h>

#include <QApplication>

#include <cstdlib>

int main(int count, char** arguments) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(count, arguments);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
