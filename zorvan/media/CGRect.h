#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/media/NSBezierPath.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/graphics/NSCompositingOperation.h>

namespace zorvan {

// Rectangles that draw themselves in the current graphics context; nothing is drawn when there is
// none. Lines lie half inside and half outside of the rectangle.

/// A line of width 1 along the sides, in the stroke colour that is set.
void stroke(const CGRect& rect);
/// The same after `color` has been set as the stroke colour.
void stroke(const CGRect& rect, const NSColor& color);
/// Sets `color` as the fill colour and fills, with the compositing operation of the context.
void fill(const CGRect& rect, const NSColor& color);
/// In the fill colour that is set.
void fill(const CGRect& rect, NSCompositingOperation operation);

/// A path of the rectangle.
[[nodiscard]] NSBezierPath::Pointer nsPath(const CGRect& rect);
/// With rounded corners, of the same radius on both axes.
[[nodiscard]] NSBezierPath::Pointer nsRoundedPath(const CGRect& rect, double radius);

/// One side, in the stroke colour that is set.
/// @{
void strokeTopLine(const CGRect& rect, double lineWidth);
void strokeBottomLine(const CGRect& rect, double lineWidth);
void strokeLeftLine(const CGRect& rect, double lineWidth);
void strokeRightLine(const CGRect& rect, double lineWidth);
/// @}

} // namespace zorvan
