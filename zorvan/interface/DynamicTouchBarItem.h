#pragma once

#include <zorvan/interface/DynamicBarItem.h>
#include <zorvan/interface/NSTouchBarItem.h>

namespace zorvan {

/// One item of a set that a dynamic touch bar may show.
using DynamicTouchBarItem = DynamicBarItem<NSTouchBarItem>;

} // namespace zorvan
