#include <zorvan/interface/internal/drawing.h>

#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSAttributedString.h>
#include <zorvan/media/NSBezierPath.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/media/NSGraphicsContext.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace zorvan {

Drawing::Drawing(Canvas& canvas) {
    NSGraphicsContext::saveGraphicsState();
    NSGraphicsContext::setCurrent(NSGraphicsContext::create(canvas));
}

Drawing::~Drawing() { NSGraphicsContext::restoreGraphicsState(); }

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

namespace {

/// Text that differs from another in its colours alone is as large.
NSAttributedString withoutColors(const NSAttributedString& text) {
    NSMutableAttributedString plain(text);
    const NSRange all{0, plain.length()};
    plain.removeAttribute(AttributeName::foregroundColor, all);
    plain.removeAttribute(AttributeName::backgroundColor, all);
    return plain;
}

struct Measured {
    NSAttributedString text;
    CGSize size;
};

/// A title is drawn again and again, as the mouse comes and goes, and changes seldom; to measure it
/// takes longer than to fill its bezel.
CGSize measured(const NSAttributedString& text) {
    constexpr std::size_t kept = 32;
    thread_local std::vector<Measured> known;
    thread_local std::size_t oldest = 0;
    NSAttributedString plain = withoutColors(text);
    for (const Measured& one : known)
        if (one.text == plain)
            return one.size;
    const CGSize exact = size(plain);
    Measured now{std::move(plain), {std::ceil(exact.width), std::ceil(exact.height)}};
    const CGSize whole = now.size;
    if (known.size() < kept)
        known.push_back(std::move(now));
    else
        known[oldest++ % kept] = std::move(now);
    return whole;
}

} // namespace

CGSize textSize(const NSAttributedString& text) {
    return text.length() == 0 ? CGSize() : measured(text);
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
