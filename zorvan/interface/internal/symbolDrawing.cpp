#include <zorvan/interface/internal/symbolDrawing.h>

#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSColor.h>

#include <algorithm>
#include <cmath>

namespace zorvan {

void drawInside(const NSImage& image, const CGRect& rect, const NSColor& ink, bool isEnabled) {
    if (image.isTemplate())
        // The colour where the picture is opaque; a faint colour stays faint over any ground.
        return NSImage::create(image.size(), false,
                               [&](const CGRect& whole) {
                                   image.draw(whole);
                                   setFill(ink);
                                   fill(whole, NSCompositingOperation::sourceIn);
                               })
            ->draw(rect);
    constexpr double faint = 0.4;
    image.draw(rect, {.fraction = isEnabled ? 1 : faint});
}

CGRect centredRect(CGSize size, const CGRect& in) {
    const double largest = std::max({size.width / in.width(), size.height / in.height(), 1.0});
    const double width = size.width / largest, height = size.height / largest;
    return {std::round(in.minX() + (in.width() - width) / 2),
            std::round(in.minY() + (in.height() - height) / 2), width, height};
}

} // namespace zorvan
