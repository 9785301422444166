#pragma once

#include <zorvan/interface/DynamicBarItemSet.h>
#include <zorvan/interface/DynamicToolbarItemContainer.h>

namespace zorvan {

/// Items that a dynamic toolbar shows together, when its predicate says so.
using DynamicToolbarItemSet = DynamicBarItemSet<DynamicToolbarItem, DynamicToolbarItemContainer>;

} // namespace zorvan
