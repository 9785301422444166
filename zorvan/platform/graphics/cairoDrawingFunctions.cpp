#include <zorvan/platform/graphics/internal/cairoDrawingFunctions.h>

#include <zorvan/platform/foundation/internal/functionBeside.h>

// What stands on Cairo and Pango is found by its first use.

namespace zorvan {

void fillPath(const DrawingTarget& target, const CGPath& path, CGPathFillRule rule,
              const Paint& paint, const DrawingStyle& style) {
    static const auto fill = ZORVAN_FUNCTION(ZORVAN_CAIRO_DRAWING, zorvanFillPath);
    if (fill)
        fill(target, path, rule, paint, style);
}

void strokePath(const DrawingTarget& target, const CGPath& path, const StrokeStyle& stroke,
                const Paint& paint, const DrawingStyle& style) {
    static const auto drawLines = ZORVAN_FUNCTION(ZORVAN_CAIRO_DRAWING, zorvanStrokePath);
    if (drawLines)
        drawLines(target, path, stroke, paint, style);
}

void drawPicture(const DrawingTarget& target, const Bitmap& source,
                 const CGAffineTransform& transform, const DrawingStyle& style) {
    static const auto draw = ZORVAN_FUNCTION(ZORVAN_CAIRO_DRAWING, zorvanDrawPicture);
    if (draw)
        draw(target, source, transform, style);
}

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
