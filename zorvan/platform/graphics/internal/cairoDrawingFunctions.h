#pragma once

#include <zorvan/platform/graphics/TextDrawing.h>
#include <zorvan/platform/graphics/drawAttributedText.h>

#include <string_view>

// What stands on Cairo and Pango is in a library of its own: with all that these bring along it
// takes a program longer to load than everything else. Each is the function of the same name.

namespace zorvan {

extern "C" {

void zorvanFillPath(const DrawingTarget& target, const CGPath& path, CGPathFillRule rule,
                    const Paint& paint, const DrawingStyle& style);
void zorvanStrokePath(const DrawingTarget& target, const CGPath& path, const StrokeStyle& stroke,
                      const Paint& paint, const DrawingStyle& style);
void zorvanDrawPicture(const DrawingTarget& target, const Bitmap& source,
                       const CGAffineTransform& transform, const DrawingStyle& style);
void zorvanSizeOfText(const NSAttributedString& text, double width, CGSize& size);
void zorvanDrawTextInBox(const DrawingTarget& target, const NSAttributedString& text,
                         const CGRect& box, TextOverflow overflow,
                         const CGAffineTransform& toTarget, const DrawingStyle& style);
void zorvanDrawTextInPath(const DrawingTarget& target, const NSAttributedString& text,
                          const CGPath& path, const CGAffineTransform& toTarget,
                          const DrawingStyle& style);
void zorvanDrawTextLine(Bitmap& bitmap, std::string_view text, const TextBox& box,
                        const TextLineStyle& style);
}

} // namespace zorvan
