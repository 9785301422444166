#pragma once

#include <zorvan/interface/DynamicBarItemSet.h>
#include <zorvan/interface/DynamicTouchBarItemContainer.h>

namespace zorvan {

/// Items that a dynamic touch bar shows together, when its predicate says so.
using DynamicTouchBarItemSet = DynamicBarItemSet<DynamicTouchBarItem, DynamicTouchBarItemContainer>;

} // namespace zorvan
