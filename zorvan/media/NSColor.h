#pragma once

#include <zorvan/colour/NSColor.h>

namespace zorvan {

// Each acts on the current graphics context, and does nothing when there is none.

// `set(color)` is both of these; where `std::set` is meant by that, call both.

/// Sets the one colour, and leaves the other.
/// @{
void setFill(const NSColor& color);
void setStroke(const NSColor& color);
/// @}

} // namespace zorvan
