#pragma once

#include <zorvan/interface/DynamicBarItem.h>
#include <zorvan/interface/NSToolbarItem.h>

namespace zorvan {

/// One item of a set that a dynamic toolbar may show.
using DynamicToolbarItem = DynamicBarItem<NSToolbarItem>;

} // namespace zorvan
