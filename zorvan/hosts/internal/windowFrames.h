#pragma once

#include <zorvan/interface/NSWindow.h>

class QWidget;

/// Where windows stand and how large they are, from one start of the program to the next: in the
/// settings, under "NSWindow Frame " and the name that the window says.
namespace zorvan::internal {

/// Puts the window where it was, inside a screen that is there now; no larger than its screen in
/// any case.
void restoreFrame(const NSWindow& window, QWidget& widget);
/// Nothing for a window that is to be remembered nowhere.
void saveFrame(const NSWindow& window, const QWidget& widget);

} // namespace zorvan::internal
