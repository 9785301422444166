#pragma once

#include <zorvan/interface/NSWindow.h>

#include <memory>

class QWidget;

namespace zorvan {

namespace internal {
class QtWindowWidget;
}

/// Shows a window on the desktop, as a window of Qt.
///
/// The desktop draws the title bar; below it stands what the window draws, sharp at every scale of
/// the screen. The host tells the window of the mouse, of the keys typed into a search field, of
/// its size, of coming to the front and of being closed, and follows the window in its size, title,
/// closing and becoming main. The wheel scrolls the innermost scroll view under the mouse. Menus
/// open as menus of Qt.
///
/// There must be a `QApplication`, or the program stops; from the first host on its event loop runs
/// the blocks of the main queue. Hosts must go before it does. Actions and observers that are told
/// of the user or the desktop must not throw: an exception ends the program. Main thread only.
class QtWindowHost {
public:
    /// Shows the window and makes it the main one. Null, or one that has a host already, stops
    /// the program.
    static std::shared_ptr<QtWindowHost> show(std::shared_ptr<NSWindow> window);
    /// Takes the window off the desktop, without closing it.
    ~QtWindowHost();
    QtWindowHost(const QtWindowHost&) = delete;
    QtWindowHost& operator=(const QtWindowHost&) = delete;

    const std::shared_ptr<NSWindow>& window() const noexcept;
    /// For what else Qt can do with a window, such as its icon and its shortcuts. It stays the
    /// host's.
    QWidget& widget() const noexcept;

private:
    explicit QtWindowHost(std::shared_ptr<NSWindow> window);

    internal::QtWindowWidget* const widget_;
};

} // namespace zorvan
