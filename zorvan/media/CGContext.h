#pragma once

#include <zorvan/colour/CGColor.h>
#include <zorvan/colour/CGGradient.h>
#include <zorvan/media/CGPattern.h>
#include <zorvan/media/byteOffset.h>
#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/graphics/Bitmap.h>
#include <zorvan/platform/graphics/CGPath.h>
#include <zorvan/platform/graphics/DrawingTarget.h>
#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/graphics/parallelRows.h>
#include <zorvan/platform/textservices/TextAttributes.h>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvan {

class CGImage;
class Canvas;

/// Which parts of a gradient are drawn beyond its line or circle. The values may be added.
enum class CGGradientDrawingOptions {
    /// Neither.
    none = 0,
    /// In the first colour, on the side of the start.
    drawsBeforeStartLocation = 1,
    /// In the last colour, on the side of the end.
    drawsAfterEndLocation = 2,
    /// Both.
    drawsOnBothSides = 3
};

/// A bitmap to draw in: 8 bits a component, 4 bytes a pixel, rows of `width * 4` bytes with the top
/// row first, alpha premultiplied. Drawing coordinates count pixels from the bottom left corner, y
/// upwards, under the current transform.
///
/// The graphics state is the transform, the clip, the colours, the form of lines, alpha and the
/// compositing operation; `saveGState` keeps all of it. The current path is no part of it. Edges
/// are anti-aliased unless `setShouldAntialias` says otherwise.
///
/// Drawing changes the pixels where they stand, whatever the layout. A transform without an inverse
/// draws nothing. Not safe to share between threads, but for what a parallel fill says.
class CGContext : public std::enable_shared_from_this<CGContext> {
public:
    /// A transparent context with alpha last; empty when a side is below 1 or the bitmap is larger
    /// than `Bitmap::maximumPixelCount` or than memory. A width whose byte count leaves the signed
    /// 64-bit range stops the program.
    static std::shared_ptr<CGContext> rgba(std::int64_t width, std::int64_t height);
    /// The same with alpha first.
    static std::shared_ptr<CGContext> argb(std::int64_t width, std::int64_t height);

    /// A context with alpha last whose pixels `block(context, data, x, y)` fills, where `data` is
    /// the first byte of the top row and y counts rows downwards from there. Called once for each
    /// pixel, from many threads and in no order: it writes only its own pixel, at
    /// `context.offset(x, y)`, and of the context calls only what is const. An exception from it is
    /// thrown on. Returns when all pixels are done.
    template <class Block>
    requires std::invocable<Block&, CGContext&, std::uint8_t*, std::int64_t, std::int64_t>
    static std::shared_ptr<CGContext> rgba(std::int64_t width, std::int64_t height, Block&& block);

    /// A context that draws in a bitmap of somebody else's, which must stay where it is until the
    /// context goes; `region` limits it to a part, whose bottom left corner is the origin then.
    /// Empty when nothing of the region lies in the bitmap. Rows are as far apart as those of the
    /// bitmap.
    /// @{
    static std::shared_ptr<CGContext> create(Bitmap& bitmap);
    static std::shared_ptr<CGContext> create(Bitmap& bitmap, const PixelRect& region);
    /// @}
    /// A context that draws where a view draws, in the view's own coordinates, inside its clip. It
    /// must go before the bitmap under the canvas does.
    static std::shared_ptr<CGContext> create(Canvas& canvas);

    // The application's graphics context, `NSGraphicsContext`.

    /// That of this thread; empty when there is none.
    static std::shared_ptr<CGContext> current();
    /// Makes this one current until `pop`; the two nest.
    void push();
    /// Takes back the last `push` of this thread.
    void pop();
    /// Calls `body` between `push` and `pop`, also when it throws.
    template <std::invocable Body>
    void useTemporaryContext(Body&& body);

    CGContext(const CGContext&) = delete;
    CGContext& operator=(const CGContext&) = delete;

    /// The form of the bitmap, in pixels, bits and bytes.
    /// @{
    std::int64_t width() const noexcept { return width_; }
    std::int64_t height() const noexcept { return height_; }
    std::int64_t bitsPerComponent() const noexcept { return 8; }
    std::int64_t bitsPerPixel() const noexcept { return 32; }
    std::int64_t bytesPerRow() const noexcept { return bytesPerRow_; }
    BitmapLayout layout() const noexcept { return layout_; }
    /// @}

    /// Where pixel (x, y) begins among the bytes, y counting rows downwards. Not checked against
    /// the bitmap; outside the signed 64-bit range it stops the program.
    std::int64_t offset(std::int64_t x, std::int64_t y) const noexcept {
        return byteOffset(bytesPerRow(), bitsPerPixel(), bitsPerComponent(), x, y);
    }

    /// The pixels, for reading and writing, until the context goes or gives them up; null after
    /// that.
    std::uint8_t* uint8Data();

    // The graphics state.

    /// Takes what is drawn from here on to the bitmap; the identity at first, except on a canvas.
    CGAffineTransform ctm() const noexcept { return state_.ctm; }
    /// Each of these happens before what the transform did so far.
    /// @{
    void translateBy(double x, double y) noexcept { state_.ctm = state_.ctm.translatedBy(x, y); }
    void scaleBy(double x, double y) noexcept { state_.ctm = state_.ctm.scaledBy(x, y); }
    /// @}
    /// Counter-clockwise, in radians; before what the transform did so far.
    void rotate(double angle) noexcept { state_.ctm = state_.ctm.rotatedBy(angle); }
    /// The map, before what the transform did so far.
    void concatenate(const CGAffineTransform& t) noexcept {
        state_.ctm = t.concatenating(state_.ctm);
    }

    /// Keeps the graphics state for `restoreGState`; the two nest.
    void saveGState() { savedStates_.push_back(state_); }
    /// Does nothing when nothing is saved.
    void restoreGState() noexcept;
    /// Calls `body` between `saveGState` and `restoreGState`, also when it throws.
    template <std::invocable Body>
    void useTemporaryGState(Body&& body);

    /// Opaque black at first, both.
    /// @{
    void setFillColor(const CGColor& color) noexcept;
    void setStrokeColor(const CGColor& color) noexcept;
    /// @}
    /// Fills with a pattern, whose cells stand where they do whatever the transform is; with
    /// `alpha` as opacity.
    void setFillColoredPattern(const CGPattern& pattern, double alpha);
    /// 1 at first; 0 is the thinnest line there is. A negative one draws no lines.
    void setLineWidth(double width) noexcept { state_.stroke.lineWidth = width; }
    /// Butt ends and mitred corners at first.
    /// @{
    void setLineCap(CGLineCap cap) noexcept { state_.stroke.lineCap = cap; }
    void setLineJoin(CGLineJoin join) noexcept { state_.stroke.lineJoin = join; }
    /// @}
    /// 10 at first.
    void setMiterLimit(double limit) noexcept { state_.stroke.miterLimit = limit; }
    /// Lengths drawn and left out in turn, begun `phase` into them; none for a whole line.
    void setLineDash(double phase, std::vector<double> lengths);
    /// Multiplies the alpha of everything that is drawn; 1 at first, clamped to 0 to 1.
    /// @{
    void setAlpha(double alpha) noexcept;
    double alpha() const noexcept { return state_.style.alpha; }
    /// @}
    /// `sourceOver` at first.
    /// @{
    void setCompositingOperation(NSCompositingOperation operation) noexcept {
        state_.style.operation = operation;
    }
    NSCompositingOperation compositingOperation() const noexcept { return state_.style.operation; }
    /// @}
    /// True at first.
    void setShouldAntialias(bool should) noexcept { state_.style.isAntialiased = should; }

    // The current path. Its points go through the transform of the moment they are added.

    /// Drops the path there was.
    void beginPath() { path_ = {}; }
    /// Whether nothing has been added to it.
    bool isPathEmpty() const noexcept { return path_.isEmpty(); }
    /// In drawing coordinates. A line or curve without a current point adds nothing.
    /// @{
    void moveTo(double x, double y);
    void addLineTo(double x, double y);
    void addCurveTo(CGPoint control1, CGPoint control2, CGPoint end);
    /// @}
    /// A line back to where the part began.
    void closePath() { path_.closeSubpath(); }
    /// As closed parts of their own.
    /// @{
    void addRect(const CGRect& rect);
    void addEllipse(const CGRect& rect);
    /// @}
    /// Radians, counter-clockwise unless asked otherwise.
    void addArc(CGPoint center, double radius, double startAngle, double endAngle,
                bool clockwise = false);
    /// In drawing coordinates.
    void addPath(const CGPath& path);
    /// With the radius `corner`, held between 0 and half of the sides, on both axes.
    void addRoundedRec(const CGRect& rect, double corner);

    // Each of these takes the current path, and leaves none.

    /// Fills the current path; open parts count as closed.
    void fillPath(CGPathFillRule rule = CGPathFillRule::winding);
    /// Draws lines along the current path, in the form and colour that are set.
    void strokePath();
    /// Keeps what is drawn from here on inside the path, too.
    void clip(CGPathFillRule rule = CGPathFillRule::winding);

    /// Around what the clip leaves, in drawing coordinates.
    CGRect boundingBoxOfClipPath() const noexcept;
    /// Inside a rectangle; begins a new path.
    void clip(const CGRect& rect);
    /// Inside a rectangle with rounded corners; begins a new path.
    void clip(const CGRect& rect, double corner);

    // Drawing that leaves the current path alone.

    /// With the fill or stroke colour and the form of lines that are set, in drawing coordinates.
    /// @{
    void fill(const CGRect& rect);
    void stroke(const CGRect& rect);
    void fillEllipse(const CGRect& rect);
    void fill(const CGPath& path, CGPathFillRule rule = CGPathFillRule::winding);
    void stroke(const CGPath& path);
    /// @}
    /// Makes it transparent.
    void clear(const CGRect& rect);

    /// From the first colour at `start` to the last at `end`. Nothing when the two are the same.
    void drawLinearGradient(
        const CGGradient& gradient, CGPoint start, CGPoint end,
        CGGradientDrawingOptions options = CGGradientDrawingOptions::drawsBeforeStartLocation);
    /// From the first colour at the centre to the last at `radius`. Nothing unless that is above 0.
    void drawRadialGradient(
        const CGGradient& gradient, CGPoint center, double radius,
        CGGradientDrawingOptions options = CGGradientDrawingOptions::drawsBeforeStartLocation);
    /// Inside the rectangle, from its bottom to its top.
    void drawVerticalGradient(const CGGradient& gradient, const CGRect& rect);
    /// Inside the rectangle, from left to right.
    void drawHorizontalGradient(const CGGradient& gradient, const CGRect& rect);

    /// Lays the text out, from the top down, and draws the lines that fit; see `AttributeName` for
    /// what the attributes are. Upright where y grows upward.
    void drawString(std::string_view text, const CGRect& rect,
                    const AttributeDictionary& attributes = {});
    /// The same inside a path: each line takes the widest stretch that lies inside.
    void drawString(std::string_view text, const CGPath& path,
                    const AttributeDictionary& attributes = {});

    /// Draws a picture, stretched to the (standardised) rectangle. What the transform does to
    /// pixels is written at `drawBitmap`.
    void draw(const CGImage& image, const CGRect& rect);

    /// The pixels and where drawing coordinates lead to, for services that draw by themselves. No
    /// pixels once the context has given them up.
    DrawingTarget drawingTarget();
    /// What applies to every kind of drawing: clip, alpha and compositing operation.
    const DrawingStyle& drawingStyle() const noexcept { return state_.style; }
    /// From drawing coordinates to pixels from the top left, y downward.
    CGAffineTransform toPixels() const noexcept;

    /// The picture as it is now. Shares the pixels until the next drawing, so that nothing is
    /// copied unless one follows; but once `uint8Data` has given them away, it copies.
    std::shared_ptr<const CGImage> makeImage() &;
    /// The same without ever a copy: the context gives up its pixels, and draws no more.
    std::shared_ptr<const CGImage> makeImage() &&;

private:
    struct Key {};

public:
    /// For `create`.
    /// @{
    CGContext(Key, Bitmap bitmap);
    CGContext(Key, Bitmap& borrowed, const PixelRect& region);
    /// @}

private:
    struct GState {
        CGAffineTransform ctm;
        Paint fill = PaintColor{};
        Paint strokePaint = PaintColor{};
        StrokeStyle stroke;
        DrawingStyle style;
    };

    static std::shared_ptr<CGContext> make(std::int64_t width, std::int64_t height,
                                           BitmapLayout layout);
    Bitmap& writableBitmap();
    bool hasPixels() const noexcept { return bitmap_ || borrowed_; }
    void clipToPixels(CGPath path, CGPathFillRule rule);
    void drawGradient(GradientPaint paint, const CGPath& area, const CGGradient& gradient);
    void fill(const CGRect& rect, const CGGradient& gradient, CGPoint start, CGPoint end);
    CGPath pathOf(const CGRect& rect) const;

    std::int64_t width_;
    std::int64_t height_;
    std::int64_t bytesPerRow_;
    BitmapLayout layout_;
    std::shared_ptr<Bitmap> bitmap_;
    Bitmap* borrowed_ = nullptr;
    PixelRect region_{};
    bool isBlank_ = true;
    bool isSharedWithImage_ = false;
    bool hasGivenPixelsOut_ = false;
    CGAffineTransform base_;
    GState state_;
    std::vector<GState> savedStates_;
    CGPath path_; // in pixels from the top left, y downward
};

template <class Block>
requires std::invocable<Block&, CGContext&, std::uint8_t*, std::int64_t, std::int64_t>
    std::shared_ptr<CGContext> CGContext::rgba(std::int64_t width, std::int64_t height,
                                               Block&& block) {
    const std::shared_ptr<CGContext> made = rgba(width, height);
    if (!made)
        return made;
    CGContext& context = *made;
    std::uint8_t* const data = context.uint8Data();
    // By runs of pixels and not by rows, so that a bitmap of one long row is filled in parallel
    // too.
    const std::int64_t count = width * height;
    const std::int64_t grain = std::clamp<std::int64_t>(count / 64, 1, 1024);
    parallelRows(count, grain,
                 [&context, &block, data, width](std::int64_t first, std::int64_t last) {
                     for (std::int64_t y = first / width; first < last; ++y) {
                         const std::int64_t rowStart = y * width;
                         const std::int64_t end = std::min(last, rowStart + width);
                         for (std::int64_t x = first - rowStart; x < end - rowStart; ++x)
                             block(context, data, x, y);
                         first = end;
                     }
                 });
    return made;
}

template <std::invocable Body>
void CGContext::useTemporaryGState(Body&& body) {
    struct Restore {
        CGContext& context;
        ~Restore() { context.restoreGState(); }
    };
    saveGState();
    const Restore restore{*this};
    std::forward<Body>(body)();
}

template <std::invocable Body>
void CGContext::useTemporaryContext(Body&& body) {
    struct Pop {
        CGContext& context;
        ~Pop() { context.pop(); }
    };
    push();
    const Pop pop{*this};
    std::forward<Body>(body)();
}

} // namespace zorvan
