#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/media/NSImage.h>
#include <zorvan/numbers-geometry/CGRect.h>

namespace zorvan {

/// The size that an image is shown at.
inline CGSize shownSize(const NSImage& image) { return image.size().abs(); }

/// Draws a template in the colour, any other picture as it is; faint when not enabled.
void drawInside(const NSImage& image, const CGRect& rect, const NSColor& ink, bool isEnabled);
/// In the middle, at the size or as large as fits.
CGRect centredRect(CGSize size, const CGRect& in);

} // namespace zorvan
