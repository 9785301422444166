#include <zorvan/platform/graphics/drawAttributedText.h>

#include <zorvan/platform/foundation/internal/functionBeside.h>
#include <zorvan/platform/graphics/internal/cairoDrawingFunctions.h>

namespace zorvan {

CGSize sizeOfText(const NSAttributedString& text, double width) {
    static const auto measure = ZORVAN_FUNCTION(ZORVAN_CAIRO_DRAWING, zorvanSizeOfText);
    CGSize size;
    if (measure)
        measure(text, width, size);
    return size;
}

void drawText(const DrawingTarget& target, const NSAttributedString& text, const CGRect& box,
              TextOverflow overflow, const CGAffineTransform& toTarget, const DrawingStyle& style) {
    static const auto draw = ZORVAN_FUNCTION(ZORVAN_CAIRO_DRAWING, zorvanDrawTextInBox);
    if (draw)
        draw(target, text, box, overflow, toTarget, style);
}

void drawText(const DrawingTarget& target, const NSAttributedString& text, const CGPath& path,
              const CGAffineTransform& toTarget, const DrawingStyle& style) {
    static const auto draw = ZORVAN_FUNCTION(ZORVAN_CAIRO_DRAWING, zorvanDrawTextInPath);
    if (draw)
        draw(target, text, path, toTarget, style);
}

} // namespace zorvan
