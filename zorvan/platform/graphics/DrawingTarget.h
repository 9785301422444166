#pragma once

#include <zorvan/platform/graphics/Bitmap.h>
#include <zorvan/platform/graphics/CGPath.h>
#include <zorvan/platform/graphics/NSCompositingOperation.h>

#include <cstdint>
#include <memory>
#include <utility>
#include <variant>
#include <vector>

namespace zorvan {

/// Pixels to draw in, owned by somebody else: those of a bitmap, or of a part of it.
///
/// Everything that is drawn is placed in target coordinates, in pixels with y growing downward; the
/// outer corner of the first pixel stands at (x, y).
struct DrawingTarget {
    std::uint8_t* pixels;     ///< The first byte of the top row.
    std::int64_t width;       ///< In pixels.
    std::int64_t height;      ///< In pixels.
    std::int64_t bytesPerRow; ///< At least four times the width.
    BitmapLayout layout;      ///< Of each pixel.
    std::int64_t x = 0;       ///< Where the outer corner of the first pixel stands.
    std::int64_t y = 0;       ///< Where the outer corner of the first pixel stands.

    /// All of a bitmap, its top left corner at (x, y).
    static DrawingTarget of(Bitmap& bitmap, std::int64_t x = 0, std::int64_t y = 0) noexcept {
        return {bitmap.data(),
                bitmap.width(),
                bitmap.height(),
                bitmap.bytesPerRow(),
                bitmap.layout(),
                x,
                y};
    }
};

/// Components from 0 to 1, not multiplied by alpha.
struct PaintColor {
    double red = 0;   ///< From 0 to 1.
    double green = 0; ///< From 0 to 1.
    double blue = 0;  ///< From 0 to 1.
    double alpha = 1; ///< 1 is opaque.
};

/// Colours along a line, or outward from the centre of a circle; beyond the ends the first and the
/// last colour go on. Colours are mixed before they are multiplied by alpha.
struct GradientPaint {
    /// A colour of a gradient and where it stands.
    struct Stop {
        double location;  ///< From 0 to 1.
        PaintColor color; ///< Not multiplied by alpha.
    };
    std::vector<Stop> stops;         ///< In order of their locations; none paint nothing.
    CGPoint start;                   ///< Of location 0, in the gradient's own coordinates.
    CGPoint end;                     ///< Of location 1, in the gradient's own coordinates.
    double radius = 0;               ///< Above 0 a circle around `start`; `end` is not used then.
    CGAffineTransform toTarget = {}; ///< From the gradient's own coordinates.
};

/// A picture repeated over the plane.
struct PatternPaint {
    std::shared_ptr<const Bitmap> cell; ///< In the layout `rgba`.
    CGAffineTransform toTarget;         ///< From the pixels of the cell, y downward, to the target.
    double alpha = 1;                   ///< Multiplies that of the cell.
};

/// What an area is painted with.
using Paint = std::variant<PaintColor, GradientPaint, PatternPaint>;

/// A path that drawing stays inside, within the one around it.
struct DrawingClip {
    CGPath path;                              ///< In target coordinates.
    CGPathFillRule rule;                      ///< What lies inside of it.
    std::shared_ptr<const DrawingClip> outer; ///< The clip around this one; null for none.
    CGRect bounds;                            ///< Around what all of them leave.

    /// A path within a clip, which may be null.
    static std::shared_ptr<const DrawingClip> make(CGPath path, CGPathFillRule rule,
                                                   std::shared_ptr<const DrawingClip> outer) {
        const CGRect own = path.controlPointBoundingBox();
        const CGRect bounds = outer ? own.intersection(outer->bounds) : own;
        return std::make_shared<const DrawingClip>(
            DrawingClip{std::move(path), rule, std::move(outer), bounds});
    }
};

/// What applies to every kind of drawing.
struct DrawingStyle {
    /// How it meets what is there.
    NSCompositingOperation operation = NSCompositingOperation::sourceOver;
    double alpha = 1;                        ///< Multiplies the alpha of what is drawn.
    std::shared_ptr<const DrawingClip> clip; ///< Empty when there is none.
    bool isAntialiased = true;               ///< Whether pixels at an edge are covered in part.
};

/// How a line ends: at its last point, with a half circle, or half its width beyond.
enum class CGLineCap { butt = 0, round = 1, square = 2 };
/// How two lines meet: in a point, in a part of a circle, or cut off.
enum class CGLineJoin { miter = 0, round = 1, bevel = 2 };

/// How lines are drawn along a path.
struct StrokeStyle {
    /// In the coordinates that `toTarget` leads out of; 0 draws the thinnest line there is.
    double lineWidth = 1;
    CGLineCap lineCap = CGLineCap::butt;     ///< At the ends of a line.
    CGLineJoin lineJoin = CGLineJoin::miter; ///< At its corners.
    /// How many times as long as the line is wide a mitred corner may be; one that is longer is cut
    /// off.
    double miterLimit = 10;
    /// Lengths drawn and left out in turn; empty for a line without gaps, as it is drawn when a
    /// length is negative or all are too short to be seen.
    std::vector<double> dash;
    double dashPhase = 0;            ///< How far into the lengths the line begins.
    CGAffineTransform toTarget = {}; ///< From the coordinates of the pen.
};

// Pixels are changed where they stand, in either layout. Each throws `std::bad_alloc`, and may be
// called from several threads for targets that do not overlap.

/// What lies inside the path, which is in target coordinates.
void fillPath(const DrawingTarget& target, const CGPath& path, CGPathFillRule rule,
              const Paint& paint, const DrawingStyle& style);

/// `path` is in target coordinates. Nothing is drawn when the transform of the style has no
/// inverse.
void strokePath(const DrawingTarget& target, const CGPath& path, const StrokeStyle& stroke,
                const Paint& paint, const DrawingStyle& style);

/// All of `source`, placed and resampled as `drawBitmap` does it; `transform` leads from its
/// pixels, y downward, to the target.
void drawPicture(const DrawingTarget& target, const Bitmap& source,
                 const CGAffineTransform& transform, const DrawingStyle& style);

} // namespace zorvan
