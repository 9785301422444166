#include <zorvan/media/NSAttributedString.h>

#include <zorvan/media/CGContext.h>
#include <zorvan/media/NSGraphicsContext.h>
#include <zorvan/platform/graphics/drawAttributedText.h>

namespace zorvan {

void drawTruncated(const NSAttributedString& text, const CGRect& with) {
    const NSGraphicsContext::Pointer current = NSGraphicsContext::current();
    if (!current || with.isEmpty())
        return;
    CGContext& context = *current->cgContext();
    const DrawingTarget target = context.drawingTarget();
    if (!target.pixels)
        return;
    const CGAffineTransform fromTop =
        current->isFlipped() ? CGAffineTransform(1, 0, 0, 1, with.minX(), with.minY())
                             : CGAffineTransform(1, 0, 0, -1, with.minX(), with.maxY());
    drawText(target, text, CGRect(0, 0, with.width(), with.height()),
             TextOverflow::truncatesLastLine, fromTop.concatenating(context.toPixels()),
             context.drawingStyle());
}

CGSize size(const NSAttributedString& text, double width) { return sizeOfText(text, width); }

} // namespace zorvan
