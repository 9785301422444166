#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/media/NSImage.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/platform/appkit/Canvas.h>
#include <zorvan/platform/textservices/NSAttributedString.h>

namespace zorvan {

/// The colours of the interface.
namespace Palette {

constexpr NSColor grey(double white, double alpha = 1) {
    return NSColor({.white = white, .alpha = alpha});
}

inline constexpr NSColor separator = grey(0, 0.13);
inline constexpr NSColor label = grey(0, 0.82);
inline constexpr NSColor lightLabel = grey(1, 0.92);
inline constexpr NSColor field = grey(1);
inline constexpr NSColor outline = grey(0, 0.16);

} // namespace Palette

/// While it lives, colours, paths, pictures and text draw on the canvas.
class Drawing {
public:
    explicit Drawing(Canvas& canvas);
    ~Drawing();
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;
};

// On the current graphics context.

void fillRounded(const CGRect& rect, double radius, const NSColor& color);
/// A line of that width just inside the edge.
void outlineRounded(const CGRect& rect, double radius, const NSColor& color, double width = 1);

/// Text without font or colour gets these.
NSAttributedString withDefaults(const NSAttributedString& text, const NSColor& color);
/// As large as whole points.
CGSize textSize(const NSAttributedString& text);
/// One line, in the middle, shortened to the width; where it was drawn.
CGRect drawText(const NSAttributedString& text, const CGRect& in);

/// Draws a template in the colour, any other picture as it is; faint when not enabled.
void drawInside(const NSImage& image, const CGRect& rect, const NSColor& ink, bool isEnabled);
/// In the middle, at the size or as large as fits.
CGRect centredRect(CGSize size, const CGRect& in);

} // namespace zorvan
