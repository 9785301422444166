#include <zorvan/platform/graphics/DrawingTarget.h>

#include <zorvan/platform/foundation/internal/functionBeside.h>
#include <zorvan/platform/graphics/internal/cairoDrawingFunctions.h>

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

} // namespace zorvan
