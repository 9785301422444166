#include <zorvan/hosts/internal/windowFrames.h>

#include <zorvan/settings/NSUserDefaults.h>

#include <QScreen>
#include <QWidget>

namespace zorvan::internal {

namespace {

std::string settingsKey(const NSWindow& window) {
    return "NSWindow Frame " + window.frameAutosaveName();
}

} // namespace

void restoreFrame(const NSWindow& window, QWidget& widget) {
    if (!window.frameAutosaveName().empty()) {
        const auto stored = NSUserDefaults::standardUserDefaults()->dataForKey(settingsKey(window));
        if (stored)
            // Qt checks what it reads, and moves the window onto a screen.
            widget.restoreGeometry(QByteArray(reinterpret_cast<const char*>(stored->data()),
                                              static_cast<qsizetype>(stored->size())));
    }
    if (const QScreen* const screen = widget.screen())
        widget.resize(widget.size().boundedTo(screen->availableSize()));
}

void saveFrame(const NSWindow& window, const QWidget& widget) {
    if (window.frameAutosaveName().empty())
        return;
    const QByteArray geometry = widget.saveGeometry();
    const auto* const bytes = reinterpret_cast<const std::byte*>(geometry.constData());
    NSUserDefaults::standardUserDefaults()->setObject(
        PropertyList(Data(bytes, bytes + geometry.size())), settingsKey(window));
}

} // namespace zorvan::internal
