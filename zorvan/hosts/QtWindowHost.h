#pragma once

#include <zorvan/interface/NSWindow.h>

#include <memory>

class QWidget;

namespace zorvan {

namespace internal {
class WindowWidget;
}

/// Shows a window on the desktop, as a window of Qt.
///
/// Each view is the widget that does its job: a search field a line edit, a split view a splitter,
/// a toolbar a tool bar; a view of another class is a widget that the view draws and that hands it
/// the mouse, the wheel and the keys. The widgets follow the views, and what the user does comes
/// back as calls of the views. The desktop draws the title bar.
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

    /// The one that is shown; never null.
    const std::shared_ptr<NSWindow>& window() const noexcept;
    /// For what else Qt can do with a window, such as its icon and its shortcuts. It stays the
    /// host's.
    QWidget& widget() const noexcept;
    /// What shows a view of the window: a `QAbstractButton` for a button, say. Null for one that is
    /// not shown, or not yet: what comes into a bar, and the view of a cell, has its widget from
    /// the next turn of the event loop on. It stays the host's.
    QWidget* widget(const NSView& forView) const;

private:
    explicit QtWindowHost(std::shared_ptr<NSWindow> window);

    internal::WindowWidget* const widget_;
};

} // namespace zorvan
