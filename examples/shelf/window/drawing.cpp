#include "drawing.h"

#include <zorvan/interface/NSApplication.h>
#include <zorvan/interface/NSImage.h>
#include <zorvan/media/NSAttributedString.h>
#include <zorvan/media/NSBezierPath.h>
#include <zorvan/media/NSColor.h>
#include <zorvan/media/NSGraphicsContext.h>

#include <algorithm>
#include <cmath>

using namespace zorvan;

namespace {

NSColor white(double part) { return NSColor({.white = part, .alpha = 1}); }

bool isDark() { return NSApplication::shared().isDark(); }

} // namespace

NSColor inkColor() { return white(isDark() ? 0.92 : 0.13); }

NSColor faintColor() { return white(isDark() ? 0.62 : 0.45); }

void drawLine(const std::string& text, const CGRect& in, const NSColor& color,
              TextAlignment alignment) {
    constexpr double height = 17;
    const NSAttributedString line(
        text, {{AttributeName::font, TextFont{.family = "sans-serif", .size = 12}},
               {AttributeName::foregroundColor, TextColor(color.rgba())},
               {AttributeName::alignment, alignment}});
    drawTruncated(line, {in.minX(), std::round(in.midY() - height / 2), in.width(), height});
}

CGRect fitted(CGSize size, const CGRect& in) {
    const double share = std::min({in.width() / size.width, in.height() / size.height, 1.0});
    const CGSize shown = size * share;
    return {std::round(in.midX() - shown.width / 2), std::round(in.midY() - shown.height / 2),
            shown.width, shown.height};
}

void drawThumbnail(const NSImage::Pointer& image, bool isUnderWay, const CGRect& in) {
    if (image)
        return image->draw(fitted(image->size(), in));
    const char* const name = isUnderWay ? "photo" : "exclamationmark.triangle";
    const double side = std::min({in.width(), in.height(), 28.0});
    tintedImage(*NSImage::systemSymbol(name), faintColor().withAlphaComponent(isUnderWay ? 0.4 : 1),
                1)
        ->draw(fitted({side, side}, in));
}
