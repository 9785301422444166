#pragma once

#include <zorvan/colour/NSColor.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/numbers-geometry/CGSize.h>
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

/// Text without font or colour gets these.
NSAttributedString withDefaults(const NSAttributedString& text, const NSColor& color);
/// As large as whole points.
CGSize textSize(const NSAttributedString& text);
/// Draws one line in the middle, shortened to the width, in the current graphics context; where it
/// was drawn.
CGRect drawText(const NSAttributedString& text, const CGRect& in);

} // namespace zorvan
