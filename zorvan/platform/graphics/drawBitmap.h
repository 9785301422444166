#pragma once

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/platform/graphics/Bitmap.h>

namespace zorvan {

/// What is known of the pixels that are drawn over. The result is the same; `transparent` is
/// faster, and promises that every pixel is transparent black.
enum class Backdrop { transparent, arbitrary };

/// Draws all of `source` over `target`, whatever their layouts. `transform` takes positions in the
/// source to positions in the target; both are counted in pixels from the outer corner of the first
/// pixel of the top row, y downwards.
///
/// - Where the transform moves whole pixels onto whole pixels they are copied as they are.
/// - Where it keeps the sides upright, also turned by quarters, the picture is stretched: by exact
///   area average on an axis where it shrinks, by Catmull-Rom interpolation elsewhere. Edges are
///   sharp: a pixel is painted when its centre lies on the picture (the edge included), in full.
/// - Any other transform shrinks the picture by area average as far as its sides shrink, and takes
///   the rest by linear interpolation; edges are anti-aliased.
///
/// A transform with no inverse, or one that leaves the range of real numbers, draws nothing. Throws
/// `std::bad_alloc`.
void drawBitmap(const Bitmap& source, const CGAffineTransform& transform, Bitmap& target,
                Backdrop backdrop);

} // namespace zorvan
