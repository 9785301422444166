#pragma once

#include <zorvan/interface/NSMenu.h>

#include <QPoint>

class QMenu;
class QWidget;

namespace zorvan::internal {

/// A line for each item.
void fillMenu(QMenu& shown, const std::shared_ptr<NSMenu>& menu);

/// Opens the menu at a place of the screen, and returns at once.
void openMenu(NSMenu& menu, QWidget* over, const QPoint& at);
/// At the mouse, or under the button that was just pressed by the keyboard.
void openMenu(NSMenu& menu);

} // namespace zorvan::internal
