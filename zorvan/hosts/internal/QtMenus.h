#pragma once

#include <zorvan/interface/NSMenu.h>

namespace zorvan::internal {

/// Opens the menu at the mouse, and returns at once.
void openMenu(NSMenu& menu);

} // namespace zorvan::internal
