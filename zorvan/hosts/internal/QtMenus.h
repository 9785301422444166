#pragma once

#include <zorvan/interface/NSMenu.h>
#include <zorvan/platform/appkit/NSView.h>

#include <QIcon>
#include <functional>

class QAction;
class QContextMenuEvent;
class QMenu;
class QToolButton;
class QWidget;

namespace zorvan::internal {

/// A line that is chosen.
QAction& addLine(QMenu& menu, const QIcon& icon, const QString& text, bool isEnabled,
                 std::function<void()> choose);

/// A line for each item, as far as menus within menus are shown.
void fillMenu(QMenu& shown, const std::shared_ptr<NSMenu>& menu, int depth = 0);

/// Opens a menu under the button, filled anew each time.
void setMenu(QToolButton& button, std::function<void(QMenu&)> fill);

/// Opens the menu at the mouse, or under the button that was just pressed by the keyboard, and
/// returns at once.
void openMenu(NSMenu& menu);
/// Opens the context menu of the view, if there is one; by the keyboard in the middle of it.
void openContextMenu(const std::shared_ptr<NSView>& view, QWidget& widget,
                     QContextMenuEvent& event);
/// The menu that is meant for a point of the view, opened at a point of the widget.
void openContextMenu(const std::shared_ptr<NSView>& view, CGPoint asked, QWidget& widget, QPoint at,
                     QContextMenuEvent& event);

} // namespace zorvan::internal
