#pragma once

#include <zorvan/interface/NSToolbarItem.h>

#include <QString>

class QToolButton;

namespace zorvan::internal {

/// What screen readers and the menus of those without room say of the item.
QString nameOf(const NSToolbarItem& item);

/// Its picture, name and tool tip, and whether it can be pressed.
void showOnButton(const NSToolbarItem& item, QToolButton& button);

} // namespace zorvan::internal
