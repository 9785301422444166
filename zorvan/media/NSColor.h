#pragma once

#include <zorvan/colour/NSColor.h>

namespace zorvan {

// Each acts on the current graphics context, and does nothing when there is none.

/// As the colour of what is filled and of lines.
void set(const NSColor& color);
void setFill(const NSColor& color);
void setStroke(const NSColor& color);

} // namespace zorvan
