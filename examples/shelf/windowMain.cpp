// shelf-window: the pictures of folders in a window on the desktop.

#include "Options.h"
#include "PictureList.h"
#include "displayText.h"
#include "window/ShelfWindow.h"

#include <zorvan/hosts/QtWindowHost.h>

#include <QApplication>
#include <QShortcut>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>

namespace {

/// Draws the window as it is on the desktop, once the pictures in sight are there.
bool writeScreenshot(const ShelfWindow& shelf, QWidget& widget, const std::string& path) {
    const auto isBusy = [&] { return shelf.isWalking() || shelf.thumbnails()->isLoading(); };
    constexpr int enoughToSettle = 5;
    for (int idle = 0; idle < enoughToSettle; idle = isBusy() ? 0 : idle + 1)
        QApplication::processEvents(isBusy() ? QEventLoop::WaitForMoreEvents
                                             : QEventLoop::AllEvents);
    return widget.grab().save(QString::fromStdString(path), "PNG");
}

int show(const Options& options) {
    const auto shelf = ShelfWindow::create(options);
    const zorvan::CGSize size = shelf->window()->contentSize();
    if (options.screenshot)
        shelf->window()->setFrameAutosaveName({});
    const auto host = zorvan::QtWindowHost::show(shelf->window());
    QWidget& widget = host->widget();
    if (options.screenshot) {
        shelf->window()->setContentSize(size); // there is no screen that it would have to fit
        if (writeScreenshot(*shelf, widget, *options.screenshot))
            return 0;
        throw std::runtime_error(forDisplay(*options.screenshot) +
                                 ": the screenshot cannot be written");
    }
    for (const auto key : {QKeySequence::Close, QKeySequence::Quit})
        new QShortcut(key, &widget, [&widget] { widget.close(); });
    return QApplication::exec();
}

int run(int argc, char** argv) {
    const Options options = parseWindowOptions({argv + 1, argv + argc});
    if (options.help || options.version) {
        const std::string text =
            options.help ? windowHelpText() : "shelf-window " SHELF_VERSION "\n";
        std::fputs(text.c_str(), stdout);
        return 0;
    }
    const auto missing = missingPaths(options);
    for (const std::string& path : missing)
        std::fprintf(stderr, "shelf-window: %s: no such file or folder\n",
                     forDisplay(path).c_str());
    if (!missing.empty())
        return 2;
    if (options.screenshot) { // needs no screen, and two pixels to a point
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
        ::setenv("QT_SCALE_FACTOR", "2", 1);
    }
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName("Shelf");
    return show(options);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const UsageError& problem) {
        std::fprintf(stderr, "shelf-window: %s\nTry 'shelf-window --help'.\n", problem.what());
        return 2;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "shelf-window: %s\n", problem.what());
        return 1;
    }
}
