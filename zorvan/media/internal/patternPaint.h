#pragma once

#include <zorvan/media/CGPattern.h>
#include <zorvan/platform/graphics/DrawingTarget.h>

namespace zorvan {

/// Draws one repetition of the pattern, as large as it is in pixels under `toPixels`, which leads
/// from the coordinates that the pattern's matrix leads to. Without a cell when the pattern cannot
/// be drawn at any size.
PatternPaint patternPaint(const CGPattern& pattern, const CGAffineTransform& toPixels,
                          double alpha);

} // namespace zorvan
