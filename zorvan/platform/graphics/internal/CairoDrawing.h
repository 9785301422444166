#pragma once

#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/graphics/DrawingTarget.h>

#include <cairo.h>
#include <functional>
#include <memory>
#include <vector>

namespace zorvan {

using CairoSurface = std::unique_ptr<cairo_surface_t, Release<cairo_surface_destroy>>;
using CairoPattern = std::unique_ptr<cairo_pattern_t, Release<cairo_pattern_destroy>>;
using Cairo = std::unique_ptr<cairo_t, Release<cairo_destroy>>;

/// How the components stand while Cairo draws, which knows blue, green, red, alpha in memory only.
enum class ChannelOrder {
    /// Red and blue have changed places in sources and target alike. No pixel is touched for that,
    /// as every operation of Cairo's that is used treats all colours alike.
    swapped,
    /// As Cairo knows them. The pixels are turned around in place before and after.
    cairo,
};

/// The order that lets pixels of the layout stay as they are, if there is one.
inline ChannelOrder preferredOrder(BitmapLayout layout) noexcept {
    return layout == BitmapLayout::rgba ? ChannelOrder::swapped : ChannelOrder::cairo;
}

/// A part of the target that Cairo draws in, in target coordinates and inside the clip.
struct CairoTile {
    cairo_t* cairo;
    ChannelOrder order;
    /// What the tile covers, whole pixels.
    CGRect rect;
};

/// The parts that make up what `extents` covers of the target inside the clip. There may be none,
/// and there are several when Cairo cannot hold all of it at once.
std::vector<DrawingTarget> tilesOf(const DrawingTarget& target, const CGRect& extents,
                                   const DrawingStyle& style);

CGRect rectOf(const DrawingTarget& tile) noexcept;

/// Calls `draw` with the clip and the operation of the style set.
void drawTile(const DrawingTarget& tile, const DrawingStyle& style, ChannelOrder order,
              const std::function<void(const CairoTile&)>& draw);

/// A surface that stands on the pixels, which must be no more than a tile.
CairoSurface surfaceOn(const DrawingTarget& target);

/// The pixels of `target`, from the layout to Cairo's order and back.
void exchangeChannels(const DrawingTarget& target) noexcept;

void appendPath(cairo_t* cairo, const CGPath& path);
/// The inside of the path, as far as the tile is concerned.
void appendArea(cairo_t* cairo, const CGPath& path, const CGRect& tile);
/// As Cairo is told it.
PaintColor ordered(PaintColor color, ChannelOrder order) noexcept;
cairo_matrix_t cairoMatrix(const CGAffineTransform& t) noexcept;
bool isInvertible(const CGAffineTransform& t) noexcept;

/// Cairo's operator; `sourceOver` for those it does not know.
cairo_operator_t cairoOperator(NSCompositingOperation operation) noexcept;

/// Stops at what went wrong so far: throws `std::bad_alloc` without memory.
void checkStatus(cairo_t* cairo);

} // namespace zorvan
