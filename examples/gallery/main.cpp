// gallery: every view in every state. `gallery --pictures FOLDER` draws it into files, without a
// screen: light, dark, from right to left, narrow, with labels, and at one and a half pixels to a
// point (QT_SCALE_FACTOR).

#include "GalleryWindow.h"

#include <zorvan/hosts/QtWindowHost.h>

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QStyleFactory>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

namespace {

QPalette darkPalette() {
    QPalette palette(QColor(45, 46, 50), QColor(36, 37, 40));
    palette.setColor(QPalette::Highlight, QColor(60, 130, 246));
    return palette;
}

/// Until nothing is left to do.
void settle() {
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
}

struct Look {
    const char* name;
    std::function<void(GalleryWindow&, QWidget&)> apply;
};

bool writePictures(const QString& folder) {
    const Look looks[] = {
        {"light", [](GalleryWindow&, QWidget&) {}},
        {"dark", [](GalleryWindow&, QWidget&) { QApplication::setPalette(darkPalette()); }},
        {"right-to-left",
         [](GalleryWindow&, QWidget&) { QApplication::setLayoutDirection(Qt::RightToLeft); }},
        {"narrow", [](GalleryWindow&, QWidget& widget) { widget.resize(360, 400); }},
        {"labels",
         [](GalleryWindow& gallery, QWidget&) {
             gallery.setDisplayMode(zorvan::NSToolbar::DisplayMode::iconAndLabel);
         }},
    };
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    const QPalette usual = QApplication::palette();
    for (const Look& look : looks) {
        QApplication::setPalette(usual);
        QApplication::setLayoutDirection(Qt::LeftToRight);
        GalleryWindow gallery;
        gallery.window()->setFrameAutosaveName({});
        const auto host = zorvan::QtWindowHost::show(gallery.window());
        look.apply(gallery, host->widget());
        settle();
        const QString file = QDir(folder).filePath(QString("gallery-%1.png").arg(look.name));
        if (!host->widget().grab().save(file)) {
            std::fprintf(stderr, "gallery: %s cannot be written\n", qPrintable(file));
            return false;
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    const bool drawsPictures = argc == 3 && std::strcmp(argv[1], "--pictures") == 0;
    if (argc > 1 && !drawsPictures) {
        std::puts("Usage: gallery [--pictures FOLDER]");
        return std::strcmp(argv[1], "--help") == 0 ? 0 : 2;
    }
    if (drawsPictures)
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    const QApplication application(argc, argv);
    if (drawsPictures)
        return writePictures(QString::fromLocal8Bit(argv[2])) ? 0 : 1;
    const GalleryWindow gallery;
    const auto host = zorvan::QtWindowHost::show(gallery.window());
    return QApplication::exec();
}
