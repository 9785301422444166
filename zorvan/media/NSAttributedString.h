#pragma once

#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/numbers-geometry/CGSize.h>
#include <zorvan/platform/textservices/NSAttributedString.h>

#include <limits>

namespace zorvan {

/// Draws the text in the current graphics context, upright, from the top of the rectangle down.
/// Lines are broken at its width; the last line that fits ends in "…" when there is more, and the
/// first is drawn in any case. Nothing when there is no context.
void drawTruncated(const NSAttributedString& text, const CGRect& with);

/// How large the text is when its lines are broken at `width`; zero on a machine without fonts.
[[nodiscard]] CGSize size(const NSAttributedString& text,
                          double width = std::numeric_limits<double>::infinity());

} // namespace zorvan
