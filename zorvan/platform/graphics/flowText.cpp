#include <zorvan/platform/graphics/internal/cairoDrawingFunctions.h>

#include <zorvan/platform/graphics/internal/CairoDrawing.h>
#include <zorvan/platform/graphics/internal/PixelView.h>
#include <zorvan/platform/graphics/internal/TextParagraphs.h>

#include <algorithm>
#include <cmath>
#include <optional>

namespace zorvan {

namespace {

double points(int pangoUnits) noexcept { return static_cast<double>(pangoUnits) / PANGO_SCALE; }

/// More than a line has.
constexpr std::size_t bytesOfLine = 2048;

struct PlacedLine {
    std::shared_ptr<PangoLayout> layout; // which the line belongs to
    PangoLayoutLine* line;
    CGPoint baseline;
};

struct LineMetrics {
    PangoLayoutLine* line;
    CGRect rect; // y downward, from the top left of the layout
    double baseline;
};

std::vector<LineMetrics> linesOf(PangoLayout* layout) {
    std::vector<LineMetrics> lines;
    PangoLayoutIter* const iterator = pango_layout_get_iter(layout);
    do {
        PangoRectangle logical;
        pango_layout_iter_get_line_extents(iterator, nullptr, &logical);
        lines.push_back({pango_layout_iter_get_line_readonly(iterator),
                         CGRect(points(logical.x), points(logical.y), points(logical.width),
                                points(logical.height)),
                         points(pango_layout_iter_get_baseline(iterator))});
    } while (pango_layout_iter_next_line(iterator));
    pango_layout_iter_free(iterator);
    return lines;
}

/// Places lines one below the other until there is no room.
class BoxFlow {
public:
    BoxFlow(PangoContext* context, const CGRect& box, TextOverflow overflow, double alpha)
        : context_(context), box_(box), overflow_(overflow), alpha_(alpha), y_(box.minY()) {}

    std::vector<PlacedLine> place(const std::vector<TextParagraph>& paragraphs) {
        for (std::size_t i = 0; i < paragraphs.size() && !isFull_; ++i)
            place(paragraphs[i], i + 1 < paragraphs.size() ? &paragraphs[i + 1] : nullptr);
        return std::move(lines_);
    }

private:
    void place(const TextParagraph& paragraph, const TextParagraph* next) {
        const std::size_t count = paragraph.byteCountToFill(CGSize(box_.width(), box_.maxY() - y_));
        TextLayout layout = paragraph.layout(context_, box_.width(), alpha_, {.count = count});
        if (overflow_ == TextOverflow::truncatesLastLine) {
            // A paragraph after which there is no room says that there was more.
            const bool endsHere = next && !hasRoomBelow(layout.get(), *next);
            if (endsHere)
                layout = paragraph.layout(context_, box_.width(), alpha_,
                                          {.count = count, .hasEllipsis = true});
            pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
            pango_layout_set_height(
                layout.get(),
                static_cast<int>(std::clamp(box_.maxY() - y_, 0.0, 1e6) * PANGO_SCALE));
            isFull_ = endsHere;
        }
        add(std::move(layout));
    }

    bool hasRoomBelow(PangoLayout* layout, const TextParagraph& next) const {
        int height = 0;
        pango_layout_get_size(layout, nullptr, &height);
        const TextLayout following =
            next.layout(context_, box_.width(), alpha_, {.count = bytesOfLine});
        const double needed = linesOf(following.get()).front().rect.height();
        return y_ + points(height) + needed <= box_.maxY() + tolerance;
    }

    void add(TextLayout layout) {
        const std::shared_ptr<PangoLayout> shared(std::move(layout));
        double bottom = y_;
        for (const LineMetrics& line : linesOf(shared.get())) {
            bottom = y_ + line.rect.maxY();
            const bool fits = bottom <= box_.maxY() + tolerance;
            const bool isFirst = lines_.empty() && overflow_ == TextOverflow::truncatesLastLine;
            if (!fits && !isFirst) {
                isFull_ = true;
                return;
            }
            lines_.push_back(
                {shared, line.line, CGPoint(box_.minX() + line.rect.minX(), y_ + line.baseline)});
        }
        y_ = bottom;
    }

    static constexpr double tolerance = 0.01;

    PangoContext* context_;
    CGRect box_;
    TextOverflow overflow_;
    double alpha_;
    double y_;
    bool isFull_ = false;
    std::vector<PlacedLine> lines_;
};

using Polygons = std::vector<std::vector<CGPoint>>;

struct TextSpan {
    double left;
    double right;
    double length() const noexcept { return right - left; }
};
using Spans = std::vector<TextSpan>;

struct Crossing {
    double x;
    int winding;
};

Spans insideAt(const Polygons& polygons, double y) {
    std::vector<Crossing> crossings;
    for (const std::vector<CGPoint>& polygon : polygons)
        for (std::size_t i = 0; i < polygon.size(); ++i) {
            const CGPoint a = polygon[i], b = polygon[(i + 1) % polygon.size()];
            if ((a.y <= y) != (b.y <= y))
                crossings.push_back(
                    {a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x), a.y <= y ? 1 : -1});
        }
    std::sort(crossings.begin(), crossings.end(),
              [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
    Spans spans;
    int winding = 0;
    for (const auto& [x, direction] : crossings) {
        if (winding == 0)
            spans.push_back({x, x});
        winding += direction;
        spans.back().right = x;
    }
    return spans;
}

Spans intersection(const Spans& a, const Spans& b) {
    Spans result;
    for (const TextSpan& one : a)
        for (const TextSpan& other : b) {
            const TextSpan both{std::max(one.left, other.left), std::min(one.right, other.right)};
            if (both.length() > 0)
                result.push_back(both);
        }
    return result;
}

/// Where the outline may turn, and some heights between for safety.
std::vector<double> heights(const Polygons& polygons, double top, double bottom) {
    // Just inside, since an edge that lies on the border is above or below.
    const double inset = (bottom - top) * 1e-6;
    std::vector<double> result{top + inset, bottom - inset};
    for (const std::vector<CGPoint>& polygon : polygons)
        for (const CGPoint& p : polygon)
            if (p.y > top + inset && p.y < bottom - inset) {
                result.push_back(p.y - inset);
                result.push_back(p.y + inset);
            }
    return result;
}

/// The widest stretch that lies inside the polygons (by winding) at every height from `top` to
/// `bottom`; absent when there is none.
std::optional<TextSpan> widestSpan(const Polygons& polygons, double top, double bottom) {
    std::optional<Spans> common;
    for (const double y : heights(polygons, top, bottom)) {
        const Spans inside = insideAt(polygons, y);
        common = common ? intersection(*common, inside) : inside;
        if (common->empty())
            return std::nullopt;
    }
    return *std::max_element(
        common->begin(), common->end(),
        [](const TextSpan& a, const TextSpan& b) { return a.length() < b.length(); });
}

/// Places each line where the path has room for it.
class PathFlow {
public:
    PathFlow(PangoContext* context, const CGPath& path, double alpha)
        : context_(context), polygons_(path.polygons()), bounds_(path.boundingBox()), alpha_(alpha),
          y_(bounds_.minY()), step_(bounds_.height() / 4096) {}

    std::vector<PlacedLine> place(const std::vector<TextParagraph>& paragraphs) {
        for (const TextParagraph& paragraph : paragraphs)
            place(paragraph);
        return std::move(lines_);
    }

private:
    void place(const TextParagraph& paragraph) {
        std::size_t from = 0;
        do {
            const std::optional<std::size_t> used = placeLine(paragraph, from);
            if (!used)
                return;
            from += *used;
        } while (from < paragraph.byteCount());
    }

    /// How many bytes the line took; absent when there is no room any more.
    std::optional<std::size_t> placeLine(const TextParagraph& paragraph, std::size_t from) {
        double height = paragraph.fontSize();
        for (; y_ + height <= bounds_.maxY(); y_ += std::max(height / 16, step_)) {
            std::optional<TextSpan> span = widestSpan(polygons_, y_, y_ + height);
            if (!span || span->length() < paragraph.fontSize())
                continue;
            std::shared_ptr<PangoLayout> layout(
                paragraph.layout(context_, span->length(), alpha_, {from, bytesOfLine}));
            const LineMetrics line = linesOf(layout.get()).front();
            // The line is as high as its own fonts are, which the room has to suit.
            if (line.rect.height() > height) {
                height = line.rect.height();
                span = y_ + height <= bounds_.maxY() ? widestSpan(polygons_, y_, y_ + height)
                                                     : std::nullopt;
                if (!span || span->length() < paragraph.fontSize())
                    continue;
                layout = paragraph.layout(context_, span->length(), alpha_, {from, bytesOfLine});
            }
            return add(std::move(layout), *span);
        }
        return std::nullopt;
    }

    std::size_t add(std::shared_ptr<PangoLayout> layout, const TextSpan& span) {
        const LineMetrics line = linesOf(layout.get()).front();
        lines_.push_back(
            {layout, line.line, CGPoint(span.left + line.rect.minX(), y_ + line.baseline)});
        y_ += line.rect.height();
        const char* const text = pango_layout_get_text(layout.get());
        std::size_t used = static_cast<std::size_t>(line.line->length);
        // The space at which the line was broken belongs to it; a line is never without a letter.
        if (used == 0 && text[0] != '\0')
            used = static_cast<std::size_t>(g_utf8_next_char(text) - text);
        return std::max<std::size_t>(used, 1);
    }

    PangoContext* context_;
    Polygons polygons_;
    CGRect bounds_;
    double alpha_;
    double y_;
    double step_; // the least one downward where there is no room, so that there are not too many
    std::vector<PlacedLine> lines_;
};

void showLines(const CairoTile& tile, const std::vector<PlacedLine>& lines,
               const CGAffineTransform& toTarget) {
    const cairo_matrix_t matrix = cairoMatrix(toTarget);
    cairo_set_matrix(tile.cairo, &matrix);
    for (const PlacedLine& line : lines) {
        pango_cairo_update_context(tile.cairo, pango_layout_get_context(line.layout.get()));
        cairo_move_to(tile.cairo, line.baseline.x, line.baseline.y);
        pango_cairo_show_layout_line(tile.cairo, line.line);
    }
}

/// Around the ink, in text coordinates, with some room for what rounding moves.
CGRect inkOf(const std::vector<PlacedLine>& lines) {
    CGRect bounds = CGRect::null;
    for (const PlacedLine& line : lines) {
        PangoRectangle ink, logical;
        pango_layout_line_get_extents(line.line, &ink, &logical);
        for (const PangoRectangle& rect : {ink, logical})
            bounds = bounds.union_(CGRect(line.baseline.x + points(rect.x),
                                          line.baseline.y + points(rect.y), points(rect.width),
                                          points(rect.height)));
    }
    return bounds.isNull() ? bounds : bounds.insetBy(-2, -2);
}

void drawLines(const DrawingTarget& target, const std::vector<PlacedLine>& lines,
               const CGAffineTransform& toTarget, const DrawingStyle& style) {
    const CGRect extents = inkOf(lines).applying(toTarget).insetBy(-1, -1);
    // Always in Cairo's order, because letters may bring colours of their own.
    const auto draw = [&](const CairoTile& tile) { showLines(tile, lines, toTarget); };
    for (const DrawingTarget& tile : tilesOf(target, extents, style)) {
        if (style.operation == NSCompositingOperation::sourceOver) {
            drawTile(tile, style, ChannelOrder::cairo, draw);
            continue;
        }
        // Letters may overlap, so they meet what is there all at once.
        Bitmap layer = allocated(Bitmap::make(tile.width, tile.height));
        drawTile(DrawingTarget::of(layer, tile.x, tile.y), {}, ChannelOrder::cairo, draw);
        DrawingStyle whole = style;
        whole.alpha = 1;
        zorvanDrawPicture(tile, layer,
                          CGAffineTransform({.translationX = static_cast<double>(tile.x),
                                             .y = static_cast<double>(tile.y)}),
                          whole);
    }
}

} // namespace

extern "C" void zorvanSizeOfText(const NSAttributedString& text, double width, CGSize& size) {
    if (!hasFonts())
        return;
    const auto context = makeTextContext();
    for (const TextParagraph& paragraph : paragraphsOf(text)) {
        const TextLayout layout = paragraph.layout(context.get(), width, 1, {});
        for (const LineMetrics& line : linesOf(layout.get())) {
            size.width = std::max(size.width, line.rect.width());
            size.height += line.rect.height();
        }
    }
}

extern "C" void zorvanDrawTextInBox(const DrawingTarget& target, const NSAttributedString& text,
                                    const CGRect& box, TextOverflow overflow,
                                    const CGAffineTransform& toTarget, const DrawingStyle& style) {
    if (!isInvertible(toTarget) || !(box.width() > 0) || !hasFonts() ||
        !std::isfinite(box.minX() + box.minY()))
        return;
    const auto context = makeTextContext();
    BoxFlow flow(context.get(), box, overflow, style.alpha);
    drawLines(target, flow.place(paragraphsOf(text)), toTarget, style);
}

extern "C" void zorvanDrawTextInPath(const DrawingTarget& target, const NSAttributedString& text,
                                     const CGPath& path, const CGAffineTransform& toTarget,
                                     const DrawingStyle& style) {
    constexpr double farthest = 1e7;
    const CGRect bounds = path.controlPointBoundingBox();
    const bool isNear = std::abs(bounds.minX()) < farthest && std::abs(bounds.maxX()) < farthest &&
                        std::abs(bounds.minY()) < farthest && std::abs(bounds.maxY()) < farthest;
    if (!isInvertible(toTarget) || path.isEmpty() || !isNear || !hasFonts())
        return;
    const auto context = makeTextContext();
    PathFlow flow(context.get(), path, style.alpha);
    drawLines(target, flow.place(paragraphsOf(text)), toTarget, style);
}

} // namespace zorvan
