#pragma once

#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>
#include <string_view>

namespace zorvan {

/// Which part of a text that is too long gives way to "…".
enum class TextEllipsis { middle, end };

/// Where a line that is shorter than its box stands.
enum class TextLineAlignment { left, center, right };

/// A colour whose components are not multiplied by its alpha.
struct TextLineColor {
    std::uint8_t red = 0;     ///< From 0 to 255.
    std::uint8_t green = 0;   ///< From 0 to 255.
    std::uint8_t blue = 0;    ///< From 0 to 255.
    std::uint8_t alpha = 255; ///< 255 is opaque.
};

/// How a line of text is drawn.
struct TextLineStyle {
    double size = 13;                                      ///< The height of the font in pixels.
    bool isBold = false;                                   ///< Whether it is set in bold type.
    TextLineColor color = {};                              ///< Of all letters.
    TextLineAlignment alignment = TextLineAlignment::left; ///< Of a line that is too short.
    TextEllipsis ellipsis = TextEllipsis::end;             ///< Of a line that is too long.
};

/// Where a line of text goes, in pixels from the top-left corner of the bitmap. Nothing is drawn
/// unless both sides are above 0.
struct TextBox {
    std::int64_t x = 0;      ///< Of the left edge.
    std::int64_t y = 0;      ///< Of the top edge, downward.
    std::int64_t width = 0;  ///< In pixels.
    std::int64_t height = 0; ///< In pixels.
};

/// Draws UTF-8 text as one line in the desktop's sans-serif font, its top at the top of the box,
/// shortened to the width of the box and cut off at its lower edge.
///
/// Line breaks are drawn as signs, bytes that are no UTF-8 as U+FFFD. Nothing is drawn outside the
/// bitmap, and nothing at all on a machine without fonts. May be called from several threads for
/// bitmaps, or parts of one bitmap, that do not overlap.
void drawTextLine(Bitmap& bitmap, std::string_view text, const TextBox& box,
                  const TextLineStyle& style);

} // namespace zorvan
