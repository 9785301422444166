#include <zorvan/platform/graphics/internal/cairoDrawingFunctions.h>

#include <zorvan/platform/graphics/drawBitmap.h>
#include <zorvan/platform/graphics/internal/CairoDrawing.h>
#include <zorvan/platform/graphics/internal/PixelView.h>
#include <zorvan/platform/graphics/internal/blendPixels.h>
#include <zorvan/platform/graphics/internal/nearPath.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

namespace zorvan {

namespace {

using Operation = NSCompositingOperation;

/// Operations that change the target also where nothing covers it, unless they are held back.
bool reachesBeyondSource(Operation operation) noexcept {
    return operation == Operation::sourceIn || operation == Operation::sourceOut ||
           operation == Operation::destinationIn || operation == Operation::destinationAtop;
}

/// The same for a picture, whose transparent surroundings are a source too.
bool showsTransparency(Operation operation) noexcept {
    return reachesBeyondSource(operation) || operation == Operation::clear ||
           operation == Operation::copy;
}

Bitmap layerFor(const CGRect& rect) {
    return allocated(Bitmap::make(static_cast<std::int64_t>(rect.width()),
                                  static_cast<std::int64_t>(rect.height())));
}

DrawingTarget targetOn(Bitmap& layer, const CGRect& rect) noexcept {
    return DrawingTarget::of(layer, static_cast<std::int64_t>(rect.minX()),
                             static_cast<std::int64_t>(rect.minY()));
}

CairoPattern gradientPattern(const GradientPaint& paint, double alpha, ChannelOrder order) {
    CairoPattern pattern(
        paint.radius > 0
            ? cairo_pattern_create_radial(paint.start.x, paint.start.y, 0, paint.start.x,
                                          paint.start.y, paint.radius)
            : cairo_pattern_create_linear(paint.start.x, paint.start.y, paint.end.x, paint.end.y));
    for (const auto& [location, color] : paint.stops) {
        const auto [red, green, blue, opacity] = ordered(color, order);
        cairo_pattern_add_color_stop_rgba(pattern.get(), location, red, green, blue,
                                          opacity * alpha);
    }
    cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
    const cairo_matrix_t matrix = cairoMatrix(paint.toTarget.inverted());
    cairo_pattern_set_matrix(pattern.get(), &matrix);
    return pattern;
}

/// The cell as Cairo is to see it: a copy of its own when colours or alpha have to change.
struct PatternSource {
    std::optional<Bitmap> copy;
    CairoSurface surface;
    CairoPattern pattern;
};

bool movesWholePixels(const CGAffineTransform& t) noexcept {
    return t.a == 1 && t.b == 0 && t.c == 0 && t.d == 1 && t.tx == std::floor(t.tx) &&
           t.ty == std::floor(t.ty);
}

void multiplyBy(double alpha, Bitmap& bitmap) noexcept {
    for (std::int64_t i = 0; i < bitmap.byteCount(); ++i)
        bitmap.data()[i] = static_cast<std::uint8_t>(bitmap.data()[i] * alpha + 0.5);
}

PatternSource patternSource(const PatternPaint& paint, double alpha, ChannelOrder order) {
    PatternSource source;
    // Cairo only reads what is drawn from.
    DrawingTarget cell = DrawingTarget::of(const_cast<Bitmap&>(*paint.cell));
    if (alpha < 1 || order == ChannelOrder::cairo) {
        source.copy = allocated(paint.cell->copy());
        cell = DrawingTarget::of(*source.copy);
    }
    if (alpha < 1)
        multiplyBy(alpha, *source.copy);
    if (order == ChannelOrder::cairo)
        exchangeChannels(cell);
    source.surface = surfaceOn(cell);
    source.pattern.reset(cairo_pattern_create_for_surface(source.surface.get()));
    cairo_pattern_set_extend(source.pattern.get(), CAIRO_EXTEND_REPEAT);
    cairo_pattern_set_filter(source.pattern.get(), movesWholePixels(paint.toTarget)
                                                       ? CAIRO_FILTER_NEAREST
                                                       : CAIRO_FILTER_BILINEAR);
    const cairo_matrix_t matrix = cairoMatrix(paint.toTarget.inverted());
    cairo_pattern_set_matrix(source.pattern.get(), &matrix);
    return source;
}

/// Sets the paint as the source while `draw` runs.
template <class Draw>
void withSource(const CairoTile& tile, const Paint& paint, double alpha, Draw draw) {
    if (const auto* color = std::get_if<PaintColor>(&paint)) {
        const auto [red, green, blue, opacity] = ordered(*color, tile.order);
        cairo_set_source_rgba(tile.cairo, red, green, blue, opacity * alpha);
        draw();
    } else if (const auto* gradient = std::get_if<GradientPaint>(&paint)) {
        const CairoPattern pattern = gradientPattern(*gradient, alpha, tile.order);
        cairo_set_source(tile.cairo, pattern.get());
        draw();
    } else {
        const auto& pattern = std::get<PatternPaint>(paint);
        const PatternSource source = patternSource(pattern, pattern.alpha * alpha, tile.order);
        cairo_set_source(tile.cairo, source.pattern.get());
        draw();
        cairo_set_source_rgba(tile.cairo, 0, 0, 0, 0);
    }
}

bool isDrawable(const Paint& paint) noexcept {
    if (const auto* gradient = std::get_if<GradientPaint>(&paint))
        return !gradient->stops.empty() && isInvertible(gradient->toTarget);
    if (const auto* pattern = std::get_if<PatternPaint>(&paint))
        return pattern->cell && isInvertible(pattern->toTarget);
    return true;
}

/// Works out the operation over the whole tile aside, then brings in what the shape covers of that.
template <class Shape>
void drawBounded(const CairoTile& tile, const Paint& paint, const DrawingStyle& style,
                 Shape shape) {
    Bitmap layer = layerFor(tile.rect);
    const CairoSurface surface = surfaceOn(targetOn(layer, tile.rect));
    const Cairo aside(cairo_create(surface.get()));
    cairo_set_source_surface(aside.get(), cairo_get_target(tile.cairo), 0, 0);
    cairo_set_operator(aside.get(), CAIRO_OPERATOR_SOURCE);
    cairo_paint(aside.get());
    cairo_set_operator(aside.get(), cairoOperator(style.operation));
    withSource({aside.get(), tile.order, tile.rect}, paint, style.alpha,
               [&] { cairo_paint(aside.get()); });
    checkStatus(aside.get());
    cairo_surface_flush(surface.get());
    cairo_set_source_surface(tile.cairo, surface.get(), 0, 0);
    cairo_set_operator(tile.cairo, CAIRO_OPERATOR_SOURCE);
    shape(tile);
    cairo_set_source_rgba(tile.cairo, 0, 0, 0, 0);
}

/// Draws the shape aside, on nothing, and blends that in.
template <class Shape>
void drawBlended(const CairoTile& tile, const Paint& paint, const DrawingStyle& style,
                 Shape shape) {
    Bitmap layer = layerFor(tile.rect);
    DrawingStyle over = style;
    over.operation = Operation::sourceOver;
    // The layer is read in the order of the tile, so its own pixels are not turned around.
    drawTile(targetOn(layer, tile.rect), over, ChannelOrder::swapped, [&](const CairoTile& part) {
        withSource({part.cairo, tile.order, part.rect}, paint, style.alpha, [&] { shape(part); });
    });
    cairo_surface_t* const surface = cairo_get_target(tile.cairo);
    cairo_surface_flush(surface);
    std::uint8_t* const pixels = cairo_image_surface_get_data(surface);
    const std::int64_t bytesPerRow = cairo_image_surface_get_stride(surface);
    for (std::int64_t y = 0; y < layer.height(); ++y)
        blendPixels(style.operation, tile.order, layer.row(y), pixels + y * bytesPerRow,
                    layer.width());
    cairo_surface_mark_dirty(surface);
}

/// `shape` fills or strokes with the source that is set.
template <class Shape>
void drawShape(const DrawingTarget& target, const CGRect& extents, const Paint& paint,
               const DrawingStyle& style, Shape shape) {
    if (!isDrawable(paint))
        return;
    const auto draw = [&](const CairoTile& tile) {
        if (isBlendedByUs(style.operation))
            drawBlended(tile, paint, style, shape);
        else if (reachesBeyondSource(style.operation))
            drawBounded(tile, paint, style, shape);
        else
            withSource(tile, paint, style.alpha, [&] { shape(tile); });
    };
    const ChannelOrder order = preferredOrder(target.layout);
    for (const DrawingTarget& tile : tilesOf(target, extents, style))
        drawTile(tile, style, order, draw);
}

cairo_line_cap_t cairoCap(CGLineCap cap) noexcept {
    return cap == CGLineCap::round    ? CAIRO_LINE_CAP_ROUND
           : cap == CGLineCap::square ? CAIRO_LINE_CAP_SQUARE
                                      : CAIRO_LINE_CAP_BUTT;
}

cairo_line_join_t cairoJoin(CGLineJoin join) noexcept {
    return join == CGLineJoin::round   ? CAIRO_LINE_JOIN_ROUND
           : join == CGLineJoin::bevel ? CAIRO_LINE_JOIN_BEVEL
                                       : CAIRO_LINE_JOIN_MITER;
}

/// Cairo takes no dash that has a negative length, and would draw ones too short to be seen by the
/// million.
bool isDash(const StrokeStyle& stroke) noexcept {
    constexpr double shortest = 0.05; // in pixels, all together
    double sum = 0;
    for (const double length : stroke.dash) {
        if (!std::isfinite(length) || length < 0)
            return false;
        sum += length;
    }
    return sum * std::hypot(stroke.toTarget.a, stroke.toTarget.b) > shortest;
}

void setPen(cairo_t* cairo, const StrokeStyle& stroke) {
    if (stroke.lineWidth > 0) {
        const cairo_matrix_t matrix = cairoMatrix(stroke.toTarget);
        cairo_set_matrix(cairo, &matrix);
    }
    cairo_set_line_width(cairo, stroke.lineWidth > 0 ? stroke.lineWidth : 1);
    cairo_set_line_cap(cairo, cairoCap(stroke.lineCap));
    cairo_set_line_join(cairo, cairoJoin(stroke.lineJoin));
    cairo_set_miter_limit(cairo, std::isfinite(stroke.miterLimit) ? stroke.miterLimit : 10);
    if (isDash(stroke))
        cairo_set_dash(cairo, stroke.dash.data(), static_cast<int>(stroke.dash.size()),
                       std::isfinite(stroke.dashPhase) ? stroke.dashPhase : 0);
}

DashMeasure dashMeasure(const StrokeStyle& stroke) noexcept {
    if (!isDash(stroke))
        return {};
    const double sum = std::accumulate(stroke.dash.begin(), stroke.dash.end(), 0.0);
    const bool isOdd = stroke.dash.size() % 2 != 0; // gaps and dashes then change places
    return {isOdd ? 2 * sum : sum,
            stroke.lineWidth > 0 ? stroke.toTarget.inverted() : CGAffineTransform()};
}

/// How far from its path a line may reach, in target coordinates.
double reachOf(const StrokeStyle& stroke) noexcept {
    const CGAffineTransform& t = stroke.toTarget;
    const double scale = std::hypot(t.a, t.b) + std::hypot(t.c, t.d);
    return 2 + std::max(stroke.lineWidth, 1.0) * std::max(scale, 1.0) *
                   std::max(stroke.miterLimit, 2.0);
}

/// The picture's sides as they are painted: sharp when they are upright.
CGPath paintedArea(const CGRect& source, const CGAffineTransform& t) {
    CGPath path;
    const bool isUpright = (t.b == 0 && t.c == 0) || (t.a == 0 && t.d == 0);
    if (!isUpright) {
        path.addRect(source);
        return path.applying(t);
    }
    const CGRect placed = source.applying(t);
    const double left = std::ceil(placed.minX() - 0.5), top = std::ceil(placed.minY() - 0.5);
    path.addRect(CGRect(left, top, std::floor(placed.maxX() + 0.5) - left,
                        std::floor(placed.maxY() + 0.5) - top));
    return path;
}

} // namespace

extern "C" void zorvanFillPath(const DrawingTarget& target, const CGPath& path, CGPathFillRule rule,
                               const Paint& paint, const DrawingStyle& style) {
    drawShape(target, path.controlPointBoundingBox(), paint, style, [&](const CairoTile& tile) {
        appendArea(tile.cairo, path, tile.rect);
        cairo_set_fill_rule(tile.cairo, rule == CGPathFillRule::evenOdd ? CAIRO_FILL_RULE_EVEN_ODD
                                                                        : CAIRO_FILL_RULE_WINDING);
        cairo_fill(tile.cairo);
    });
}

extern "C" void zorvanStrokePath(const DrawingTarget& target, const CGPath& path,
                                 const StrokeStyle& stroke, const Paint& paint,
                                 const DrawingStyle& style) {
    if (!isInvertible(stroke.toTarget) || !(stroke.lineWidth >= 0) ||
        !std::isfinite(stroke.lineWidth))
        return;
    const double reach = reachOf(stroke);
    drawShape(target, path.controlPointBoundingBox().insetBy(-reach, -reach), paint, style,
              [&](const CairoTile& tile) {
                  if (goesFar(path, tile.rect))
                      appendPath(tile.cairo, nearLines(path, tile.rect.insetBy(-reach, -reach),
                                                       dashMeasure(stroke)));
                  else
                      appendPath(tile.cairo, path);
                  cairo_save(tile.cairo);
                  setPen(tile.cairo, stroke);
                  cairo_stroke(tile.cairo);
                  cairo_restore(tile.cairo);
              });
}

extern "C" void zorvanDrawPicture(const DrawingTarget& target, const Bitmap& source,
                                  const CGAffineTransform& transform, const DrawingStyle& style) {
    const CGRect rect = rectOf(source);
    if (!isInvertible(transform))
        return;
    const bool needsArea = showsTransparency(style.operation);
    for (const DrawingTarget& tile :
         tilesOf(target, rect.applying(transform).insetBy(-1, -1), style)) {
        const CGRect covered = rectOf(tile);
        auto layer = std::make_shared<Bitmap>(layerFor(covered));
        const CGAffineTransform fromTile({.translationX = covered.minX(), .y = covered.minY()});
        drawBitmap(source, transform.concatenating(fromTile.inverted()), *layer,
                   Backdrop::transparent);
        CGPath area;
        if (needsArea)
            area = paintedArea(rect, transform);
        else
            area.addRect(covered);
        zorvanFillPath(tile, area, CGPathFillRule::winding,
                       PatternPaint{std::move(layer), fromTile}, style);
    }
}

} // namespace zorvan
