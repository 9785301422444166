// shelf-window: the pictures of a folder in a window on the desktop.

#include "Options.h"
#include "PictureList.h"
#include "PictureWindow.h"
#include "ProgressBar.h"
#include "displayText.h"
#include "work.h"

#include <zorvan/hosts/QtWindowHost.h>

#include <QApplication>
#include <QShortcut>
#include <QWidget>
#include <cstdio>
#include <exception>

namespace {

void addShortcuts(QWidget& widget, PictureWindow& shown) {
    for (const bool forward : {false, true})
        new QShortcut(forward ? Qt::Key_Right : Qt::Key_Left, &widget,
                      [&shown, forward] { shown.selectNext(forward); });
    for (const auto key : {QKeySequence::Close, QKeySequence::Quit})
        new QShortcut(key, &widget, [&widget] { widget.close(); });
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    try {
        const Options options = parseOptions({argv + 1, argv + argc});
        if (options.help) {
            std::puts("Usage: shelf-window [-r] FILE-OR-FOLDER...");
            return 0;
        }
        if (const auto missing = missingPaths(options); !missing.empty())
            throw UsageError(forDisplay(missing.front()) + ": no such file or folder");
        const std::vector<ListedFile> files = listFiles(options);
        ProgressBar progress(files.size(), !options.quiet);
        const WorkResult result = work(files, options, nullptr, progress);
        PictureWindow shown(options.paths.front(), files, result.facts);
        const auto host = zorvan::QtWindowHost::show(shown.window());
        addShortcuts(host->widget(), shown);
        return QApplication::exec();
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "shelf-window: %s\n", problem.what());
        return 2;
    }
}
