#include <zorvan/platform/graphics/internal/CairoDrawing.h>

#include <zorvan/platform/graphics/internal/nearPath.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace zorvan {

namespace {

/// Of a surface of Cairo's, rounded down.
constexpr std::int64_t maximumSide = 32000;
/// Cairo counts positions in 1/256 pixels with 32 bits. Paths are cut near the tile, but no nearer
/// than the pen reaches.
constexpr double farthest = 4e6;

CGPoint held(CGPoint p) noexcept {
    return {std::clamp(p.x, -farthest, farthest), std::clamp(p.y, -farthest, farthest)};
}

/// The whole pixels that a rectangle touches, inside the target.
struct PixelBounds {
    std::int64_t left, top, right, bottom;
    bool isEmpty() const noexcept { return left >= right || top >= bottom; }
};

std::int64_t heldBetween(double value, std::int64_t low, std::int64_t high) noexcept {
    if (!(value > static_cast<double>(low)))
        return low;
    return value < static_cast<double>(high) ? static_cast<std::int64_t>(value) : high;
}

PixelBounds pixelBounds(const CGRect& rect, const DrawingTarget& target) noexcept {
    const std::int64_t right = target.x + target.width, bottom = target.y + target.height;
    if (rect.isNull())
        return {0, 0, 0, 0};
    return {heldBetween(std::floor(rect.minX()), target.x, right),
            heldBetween(std::floor(rect.minY()), target.y, bottom),
            heldBetween(std::ceil(rect.maxX()), target.x, right),
            heldBetween(std::ceil(rect.maxY()), target.y, bottom)};
}

DrawingTarget part(const DrawingTarget& target, const PixelBounds& bounds) noexcept {
    DrawingTarget result = target;
    result.pixels += (bounds.top - target.y) * target.bytesPerRow + (bounds.left - target.x) * 4;
    result.x = bounds.left;
    result.y = bounds.top;
    result.width = bounds.right - bounds.left;
    result.height = bounds.bottom - bounds.top;
    return result;
}

void exchangeRow(std::uint8_t* row, std::int64_t width, BitmapLayout layout) noexcept {
    for (std::int64_t x = 0; x < width; ++x) {
        std::uint32_t pixel;
        std::memcpy(&pixel, row + x * 4, 4);
        pixel = layout == BitmapLayout::argb
                    ? __builtin_bswap32(pixel)
                    : (pixel & 0xFF00FF00u) | (pixel >> 16 & 0xFFu) | (pixel & 0xFFu) << 16;
        std::memcpy(row + x * 4, &pixel, 4);
    }
}

/// Turns the pixels back also when drawing throws.
class ExchangedChannels {
public:
    ExchangedChannels(const DrawingTarget& target, ChannelOrder order)
        : target_(target), isNeeded_(order == ChannelOrder::cairo) {
        if (isNeeded_)
            exchangeChannels(target_);
    }
    ~ExchangedChannels() {
        if (isNeeded_)
            exchangeChannels(target_);
    }
    ExchangedChannels(const ExchangedChannels&) = delete;
    ExchangedChannels& operator=(const ExchangedChannels&) = delete;

private:
    const DrawingTarget& target_;
    bool isNeeded_;
};

void applyClip(cairo_t* cairo, const std::shared_ptr<const DrawingClip>& clip, const CGRect& tile) {
    for (const DrawingClip* node = clip.get(); node; node = node->outer.get()) {
        appendArea(cairo, node->path, tile);
        cairo_set_fill_rule(cairo, node->rule == CGPathFillRule::evenOdd ? CAIRO_FILL_RULE_EVEN_ODD
                                                                         : CAIRO_FILL_RULE_WINDING);
        cairo_clip(cairo);
    }
}

} // namespace

void exchangeChannels(const DrawingTarget& target) noexcept {
    for (std::int64_t y = 0; y < target.height; ++y)
        exchangeRow(target.pixels + y * target.bytesPerRow, target.width, target.layout);
}

CairoSurface surfaceOn(const DrawingTarget& target) {
    // A single row may be longer than Cairo counts bytes.
    const std::int64_t stride = target.height > 1 ? target.bytesPerRow : target.width * 4;
    CairoSurface surface(cairo_image_surface_create_for_data(
        target.pixels, CAIRO_FORMAT_ARGB32, static_cast<int>(target.width),
        static_cast<int>(target.height), static_cast<int>(stride)));
    cairo_surface_set_device_offset(surface.get(), -static_cast<double>(target.x),
                                    -static_cast<double>(target.y));
    return surface;
}

std::vector<DrawingTarget> tilesOf(const DrawingTarget& target, const CGRect& extents,
                                   const DrawingStyle& style) {
    const CGRect seen = style.clip ? extents.intersection(style.clip->bounds) : extents;
    const PixelBounds all = pixelBounds(seen, target);
    std::vector<DrawingTarget> tiles;
    for (std::int64_t y = all.top; y < all.bottom; y += maximumSide)
        for (std::int64_t x = all.left; x < all.right; x += maximumSide)
            tiles.push_back(part(target, {x, y, std::min(all.right, x + maximumSide),
                                          std::min(all.bottom, y + maximumSide)}));
    return tiles;
}

CGRect rectOf(const DrawingTarget& tile) noexcept {
    return {static_cast<double>(tile.x), static_cast<double>(tile.y),
            static_cast<double>(tile.width), static_cast<double>(tile.height)};
}

void drawTile(const DrawingTarget& tile, const DrawingStyle& style, ChannelOrder order,
              const std::function<void(const CairoTile&)>& draw) {
    const ExchangedChannels exchanged(tile, order);
    const CairoSurface surface = surfaceOn(tile);
    const Cairo cairo(cairo_create(surface.get()));
    cairo_set_antialias(cairo.get(),
                        style.isAntialiased ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
    applyClip(cairo.get(), style.clip, rectOf(tile));
    cairo_set_operator(cairo.get(), cairoOperator(style.operation));
    draw({cairo.get(), order, rectOf(tile)});
    checkStatus(cairo.get());
    cairo_surface_flush(surface.get());
}

void appendPath(cairo_t* cairo, const CGPath& path) {
    using Type = CGPath::ElementType;
    for (const auto& [type, points] : path.elements()) {
        const CGPoint a = held(points[0]), b = held(points[1]), c = held(points[2]);
        if (type == Type::moveToPoint)
            cairo_move_to(cairo, a.x, a.y);
        else if (type == Type::addLineToPoint)
            cairo_line_to(cairo, a.x, a.y);
        else if (type == Type::addCurveToPoint)
            cairo_curve_to(cairo, a.x, a.y, b.x, b.y, c.x, c.y);
        else
            cairo_close_path(cairo);
    }
}

void appendArea(cairo_t* cairo, const CGPath& path, const CGRect& tile) {
    goesFar(path, tile) ? appendPath(cairo, nearArea(path, tile)) : appendPath(cairo, path);
}

PaintColor ordered(PaintColor color, ChannelOrder order) noexcept {
    if (order == ChannelOrder::swapped)
        std::swap(color.red, color.blue);
    return color;
}

cairo_matrix_t cairoMatrix(const CGAffineTransform& t) noexcept {
    return {t.a, t.b, t.c, t.d, t.tx, t.ty};
}

bool isInvertible(const CGAffineTransform& t) noexcept {
    const double determinant = t.a * t.d - t.b * t.c;
    return std::isfinite(determinant) && determinant != 0 && std::isfinite(1 / determinant) &&
           std::isfinite(t.tx) && std::isfinite(t.ty);
}

cairo_operator_t cairoOperator(NSCompositingOperation operation) noexcept {
    using Operation = NSCompositingOperation;
    constexpr std::pair<Operation, cairo_operator_t> operators[] = {
        {Operation::clear, CAIRO_OPERATOR_CLEAR},
        {Operation::copy, CAIRO_OPERATOR_SOURCE},
        {Operation::sourceIn, CAIRO_OPERATOR_IN},
        {Operation::sourceOut, CAIRO_OPERATOR_OUT},
        {Operation::sourceAtop, CAIRO_OPERATOR_ATOP},
        {Operation::destinationOver, CAIRO_OPERATOR_DEST_OVER},
        {Operation::destinationIn, CAIRO_OPERATOR_DEST_IN},
        {Operation::destinationOut, CAIRO_OPERATOR_DEST_OUT},
        {Operation::destinationAtop, CAIRO_OPERATOR_DEST_ATOP},
        {Operation::XOR, CAIRO_OPERATOR_XOR},
        {Operation::plusLighter, CAIRO_OPERATOR_ADD},
        {Operation::multiply, CAIRO_OPERATOR_MULTIPLY},
        {Operation::screen, CAIRO_OPERATOR_SCREEN},
        {Operation::overlay, CAIRO_OPERATOR_OVERLAY},
        {Operation::darken, CAIRO_OPERATOR_DARKEN},
        {Operation::lighten, CAIRO_OPERATOR_LIGHTEN},
        {Operation::colorDodge, CAIRO_OPERATOR_COLOR_DODGE},
        {Operation::colorBurn, CAIRO_OPERATOR_COLOR_BURN},
        {Operation::softLight, CAIRO_OPERATOR_SOFT_LIGHT},
        {Operation::hardLight, CAIRO_OPERATOR_HARD_LIGHT},
        {Operation::difference, CAIRO_OPERATOR_DIFFERENCE},
        {Operation::exclusion, CAIRO_OPERATOR_EXCLUSION},
    };
    for (const auto& [ours, cairos] : operators)
        if (ours == operation)
            return cairos;
    return CAIRO_OPERATOR_OVER;
}

void checkStatus(cairo_t* cairo) {
    if (cairo_status(cairo) == CAIRO_STATUS_NO_MEMORY)
        throw std::bad_alloc();
}

} // namespace zorvan
