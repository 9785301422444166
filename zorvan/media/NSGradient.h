#pragma once

#include <zorvan/colour/NSGradient.h>
#include <zorvan/media/NSBezierPath.h>
#include <zorvan/numbers-geometry/CGRect.h>

namespace zorvan {

// Gradients that draw themselves in the current graphics context; nothing is drawn when there is
// none.

/// Fills the rectangle. `angle`, in degrees and counter-clockwise, is the way from the first colour
/// to the last: 0 from left to right, 90 from the bottom up. The first and the last colour stand
/// where the rectangle begins and ends in that direction.
void draw(const NSGradient& gradient, const CGRect& in, double angle);
/// Fills the path, the gradient laid over its bounds.
void draw(const NSGradient& gradient, const NSBezierPath& in, double angle);

} // namespace zorvan
