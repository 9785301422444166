#include <zorvan/platform/graphics/TextDrawing.h>

#include <zorvan/platform/foundation/internal/functionBeside.h>
#include <zorvan/platform/graphics/internal/cairoDrawingFunctions.h>

namespace zorvan {

void drawTextLine(Bitmap& bitmap, std::string_view text, const TextBox& box,
                  const TextLineStyle& style) {
    static const auto draw = ZORVAN_FUNCTION(ZORVAN_CAIRO_DRAWING, zorvanDrawTextLine);
    if (draw)
        draw(bitmap, text, box, style);
}

} // namespace zorvan
