// shelf-window: the pictures of a folder in a window on the desktop.

#include "Options.h"
#include "PictureList.h"
#include "PictureWindow.h"
#include "ProgressBar.h"
#include "work.h"

#include <zorvan/hosts/QtWindowHost.h>

#include <QApplication>
#include <cstdio>
#include <exception>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    try {
        const Options options = parseOptions({argv + 1, argv + argc});
        if (options.help) {
            std::puts("Usage: shelf-window [-r] FILE-OR-FOLDER...");
            return 0;
        }
        const std::vector<ListedFile> files = listFiles(options);
        ProgressBar progress(files.size(), !options.quiet);
        const WorkResult result = work(files, options, nullptr, progress);
        const PictureWindow shown("Shelf", files, result.facts);
        const auto host = zorvan::QtWindowHost::show(shown.window());
        return QApplication::exec();
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "shelf-window: %s\n", problem.what());
        return 2;
    }
}
