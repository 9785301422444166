#include <zorvan/interface/internal/drawing.h>

#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSAttributedString.h>
#include <zorvan/media/NSBezierPath.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/media/NSGraphicsContext.h>

#include <algorithm>
#include <cmath>

namespace zorvan {

Drawing::Drawing(Canvas& canvas) {
    NSGraphicsContext::saveGraphicsState();
    NSGraphicsContext::setCurrent(NSGraphicsContext::create(canvas));
}

Drawing::~Drawing() { NSGraphicsContext::restoreGraphicsState(); }

void fillRect(const CGRect& rect, const NSColor& color) { fill(rect, color); }

void fillRounded(const CGRect& rect, double radius, const NSColor& color) {
    setFill(color);
    nsRoundedPath(rect, radius)->fill();
}

void outlineRounded(const CGRect& rect, double radius, const NSColor& color, double width) {
    setStroke(color);
    const auto path =
        nsRoundedPath(rect.shrunkBy({.dx = width / 2, .dy = width / 2}), radius - width / 2);
    path->setLineWidth(width);
    path->stroke();
}

NSAttributedString withDefaults(const NSAttributedString& text, const NSColor& color) {
    const TextFont font{.family = "sans-serif", .size = 13};
    NSMutableAttributedString complete(text);
    const auto runs = text.runs();
    for (const NSAttributedString::Run& run : runs) {
        if (!run.attributes.contains(AttributeName::font))
            complete.addAttribute(AttributeName::font, font, run.range);
        if (!run.attributes.contains(AttributeName::foregroundColor))
            complete.addAttribute(AttributeName::foregroundColor, TextColor(color.rgba()),
                                  run.range);
    }
    return complete;
}

CGSize textSize(const NSAttributedString& text) {
    const CGSize exact = text.length() == 0 ? CGSize() : size(text);
    return {std::ceil(exact.width), std::ceil(exact.height)};
}

CGRect drawText(const NSAttributedString& text, const CGRect& in) {
    const CGSize natural = textSize(text);
    const double width = std::min(natural.width, in.width());
    const CGRect box(std::round(in.minX() + (in.width() - width) / 2),
                     std::round(in.minY() + (in.height() - natural.height) / 2), width,
                     natural.height);
    if (width > 0)
        drawTruncated(text, box);
    return box;
}

} // namespace zorvan
