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
#include <cstdlib>
#include <exception>
#include <stdexcept>

namespace {

void addShortcuts(QWidget& widget, PictureWindow& shown) {
    for (const bool forward : {false, true})
        new QShortcut(forward ? Qt::Key_Right : Qt::Key_Left, &widget,
                      [&shown, forward] { shown.selectNext(forward); });
    for (const auto key : {QKeySequence::Close, QKeySequence::Quit})
        new QShortcut(key, &widget, [&widget] { widget.close(); });
}

/// Draws the window as it is on the desktop.
bool writeScreenshot(QWidget& widget, const std::string& path) {
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
    return widget.grab().save(QString::fromStdString(path), "PNG");
}

int show(const Options& options) {
    if (const auto missing = missingPaths(options); !missing.empty())
        throw UsageError(forDisplay(missing.front()) + ": no such file or folder");
    const std::vector<ListedFile> files = listFiles(options);
    ProgressBar progress(files.size(), !options.quiet);
    const WorkResult result = work(files, options, nullptr, progress);
    PictureWindow shown(options.paths.front(), files, result.facts);
    const zorvan::CGSize size = shown.window()->contentSize();
    const auto host = zorvan::QtWindowHost::show(shown.window());
    if (options.screenshot) {
        shown.window()->setContentSize(size); // there is no screen that it would have to fit
        if (writeScreenshot(host->widget(), *options.screenshot))
            return 0;
        throw std::runtime_error(forDisplay(*options.screenshot) +
                                 ": the screenshot cannot be written");
    }
    addShortcuts(host->widget(), shown);
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    try {
        const Options options = parseOptions({argv + 1, argv + argc});
        if (options.help) {
            std::puts("Usage: shelf-window [-r] [--screenshot FILE] FILE-OR-FOLDER...");
            return 0;
        }
        if (options.screenshot) { // needs no screen, and two pixels to a point
            ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
            ::setenv("QT_SCALE_FACTOR", "2", 1);
        }
        const QApplication application(argc, argv);
        return show(options);
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "shelf-window: %s\n", problem.what());
        return 2;
    }
}
