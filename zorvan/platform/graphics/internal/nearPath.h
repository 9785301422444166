#pragma once

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/graphics/CGPath.h>

namespace zorvan {

// Cairo counts positions in fixed point. Lines that lead far away from what is drawn in come out
// bent there, or not at all, so they are cut first.

/// Whether the path leads so far away from the tile that it has to be cut.
bool goesFar(const CGPath& path, const CGRect& tile) noexcept;

/// What is the same to the tile as the inside of the path, by either rule, and stays near it.
CGPath nearArea(const CGPath& path, const CGRect& tile);

/// How dashes are laid along a path.
struct DashMeasure {
    double period = 0;         ///< After which they repeat, in the pen's coordinates; 0 for none.
    CGAffineTransform toPen{}; ///< From the coordinates of the path.
};

/// The lines of the path as far as they touch `reach`, which is around the tile and all from where
/// a pen reaches into it. Dashes stay where they are, give or take those before a far curve.
CGPath nearLines(const CGPath& path, const CGRect& reach, const DashMeasure& dashes);

} // namespace zorvan
