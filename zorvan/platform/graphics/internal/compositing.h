#pragma once

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/platform/graphics/internal/PixelView.h>

namespace zorvan {

/// Lays `source` over `target`, which has the same size and layout.
void compositeOver(ConstPixelView source, PixelView target, BitmapLayout layout);

/// Draws `source` under `transform` over `target`, which has the same layout, by linear
/// interpolation and with anti-aliased edges. The transform has an inverse and shrinks no side of
/// the source.
void compositeTransformed(ConstPixelView source, const CGAffineTransform& transform,
                          PixelView target, BitmapLayout layout);

} // namespace zorvan
