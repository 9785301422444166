#pragma once

#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>
#include <string_view>

namespace zorvan {

/// What a view draws on: a bitmap, seen through an origin, a clip and a scale.
///
/// Coordinates are the view's own, in points; with y growing downward for a flipped view and upward
/// otherwise, the canvas turns them. Drawing never leaves the clip.
class Canvas {
public:
    /// An opaque colour.
    struct Colour {
        /// From 0 to 255.
        /// @{
        std::uint8_t r, g, b;
        /// @}
    };

    /// The whole of a bitmap, whose size in points is its size in pixels divided by `scale`.
    Canvas(Bitmap& bitmap, double scale);

    /// The same bitmap for a view inside this one: `frame` is where it stands here, `bounds` what
    /// of its own coordinates shows there.
    Canvas inside(const CGRect& frame, const CGRect& bounds, bool isFlipped) const;

    /// The visible part, in the view's coordinates.
    const CGRect& clip() const noexcept { return clip_; }

    /// What is drawn on, all of it.
    Bitmap& bitmap() const noexcept { return *bitmap_; }
    /// From the view's coordinates to pixels from the top left of the bitmap, y growing downward.
    CGAffineTransform transform() const noexcept;
    /// Whether y grows downward in the view that is drawn.
    bool isFlipped() const noexcept { return isFlipped_; }
    /// Pixels to a point.
    double scale() const noexcept { return scale_; }

    /// Paints what of the rectangle lies inside the clip; its edges are rounded to whole pixels.
    void fill(const CGRect& rect, Colour colour);
    /// One line of text, in the middle of the rectangle's height, shortened to its width.
    void drawText(std::string_view text, const CGRect& rect, Colour colour);

private:
    struct PixelEdges {
        std::int64_t left, right, top, bottom;
    };

    CGRect toPixels(const CGRect& rect) const;
    PixelEdges pixelEdges(const CGRect& rect) const;

    Bitmap* bitmap_;
    double scale_;
    CGRect bounds_;
    CGRect clip_;
    bool isFlipped_ = false;
    /// Where the top left corner of `bounds_` stands on the bitmap, in pixels from its top left.
    CGPoint pixelOrigin_;
};

} // namespace zorvan
