#pragma once

#include <zorvan/platform/graphics/DrawingTarget.h>
#include <zorvan/platform/textservices/NSAttributedString.h>

#include <limits>

namespace zorvan {

/// What happens to text that does not fit.
enum class TextOverflow {
    leavesLinesOut,   ///< Lines that do not fit as a whole are left out.
    truncatesLastLine ///< The last line that fits ends in "…"; the first is drawn in any case.
};

// Text is laid out in coordinates of its own, in points with y growing downward; `toTarget` leads
// from there to the target. Lines run from the top down, broken between words, and within a word
// that is wider than its line. Each paragraph is aligned as its first character asks. Text without
// a font attribute is set in `TextFont()`, without a colour in black.
//
// On a machine without fonts nothing is drawn and every size is zero.

/// How large the text is when its lines are broken at `width`.
CGSize sizeOfText(const NSAttributedString& text,
                  double width = std::numeric_limits<double>::infinity());

/// Lays the text out in the box and draws it. Letters may reach out of the box a little.
void drawText(const DrawingTarget& target, const NSAttributedString& text, const CGRect& box,
              TextOverflow overflow, const CGAffineTransform& toTarget, const DrawingStyle& style);

/// Lays the text out inside the path: each line takes the widest stretch that lies inside over the
/// whole height of the line. What does not fit is left out. Nothing is drawn in a path that reaches
/// 10,000,000 points away from the origin.
void drawText(const DrawingTarget& target, const NSAttributedString& text, const CGPath& path,
              const CGAffineTransform& toTarget, const DrawingStyle& style);

} // namespace zorvan
