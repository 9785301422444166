#include <zorvan/platform/appkit/Canvas.h>

#include <zorvan/numbers-geometry/RealNumber.h>
#include <zorvan/platform/graphics/TextDrawing.h>

#include <algorithm>
#include <cstring>

namespace zorvan {

Canvas::Canvas(Bitmap& bitmap, double scale)
    : bitmap_(&bitmap), scale_(scale), bounds_(0, 0, static_cast<double>(bitmap.width()) / scale,
                                               static_cast<double>(bitmap.height()) / scale),
      clip_(bounds_) {}

Canvas Canvas::inside(const CGRect& frame, const CGRect& bounds, bool isFlipped) const {
    Canvas inner(*this);
    inner.pixelOrigin_ = toPixels(frame).origin;
    inner.bounds_ = bounds;
    inner.isFlipped_ = isFlipped;
    // The visible part of the frame, in the coordinates of the view inside.
    const CGRect visible = frame.intersection(clip_);
    const double x = bounds.minX() + visible.minX() - frame.minX();
    const double fromTop =
        isFlipped_ ? visible.minY() - frame.minY() : frame.maxY() - visible.maxY();
    const double y =
        isFlipped ? bounds.minY() + fromTop : bounds.maxY() - fromTop - visible.height();
    inner.clip_ = visible.isNull()
                      ? CGRect::null
                      : CGRect(x, y, visible.width(), visible.height()).intersection(bounds);
    return inner;
}

CGAffineTransform Canvas::transform() const noexcept {
    const double downward = isFlipped_ ? scale_ : -scale_;
    const double top = isFlipped_ ? bounds_.minY() : bounds_.maxY();
    return {scale_,
            0,
            0,
            downward,
            pixelOrigin_.x - bounds_.minX() * scale_,
            pixelOrigin_.y - top * downward};
}

/// In pixels, y growing downward from the top of the bitmap.
CGRect Canvas::toPixels(const CGRect& rect) const {
    const double fromTop = isFlipped_ ? rect.minY() - bounds_.minY() : bounds_.maxY() - rect.maxY();
    return {pixelOrigin_.x + (rect.minX() - bounds_.minX()) * scale_,
            pixelOrigin_.y + fromTop * scale_, rect.width() * scale_, rect.height() * scale_};
}

/// Held inside the bitmap.
Canvas::PixelEdges Canvas::pixelEdges(const CGRect& rect) const {
    const CGRect pixels = toPixels(rect);
    const auto edge = [](double position, std::int64_t limit) {
        return std::clamp<std::int64_t>(roundInt(position), 0, limit);
    };
    return {edge(pixels.minX(), bitmap_->width()), edge(pixels.maxX(), bitmap_->width()),
            edge(pixels.minY(), bitmap_->height()), edge(pixels.maxY(), bitmap_->height())};
}

void Canvas::fill(const CGRect& rect, Colour colour) {
    const CGRect visible = rect.intersection(clip_);
    if (visible.isNull())
        return;
    const PixelEdges edges = pixelEdges(visible);
    const std::uint8_t pixel[4] = {colour.r, colour.g, colour.b, 255};
    for (std::int64_t y = edges.top; y < edges.bottom; ++y)
        for (std::int64_t x = edges.left; x < edges.right; ++x)
            std::copy_n(pixel, 4, bitmap_->row(y) + x * 4);
}

void Canvas::drawText(std::string_view text, const CGRect& rect, Colour colour) {
    const CGRect visible = rect.intersection(clip_);
    const PixelEdges shown = text.empty() || visible.isNull() ? PixelEdges{} : pixelEdges(visible);
    // Drawn aside over what is there, so that only the part inside the clip is brought back.
    auto cell = Bitmap::make(shown.right - shown.left, shown.bottom - shown.top);
    if (!cell)
        return;
    const auto rowBytes = static_cast<std::size_t>(cell->bytesPerRow());
    const auto screen = [&](std::int64_t y) {
        return bitmap_->row(shown.top + y) + shown.left * 4;
    };
    for (std::int64_t y = 0; y < cell->height(); ++y)
        std::memcpy(cell->row(y), screen(y), rowBytes);
    const CGRect box = toPixels(rect);
    const std::int64_t width = roundInt(box.width()), height = roundInt(box.height());
    const double size = std::min(13 * scale_, box.height());
    const std::int64_t margin =
        std::max<std::int64_t>(roundInt((box.height() - size * 1.3) / 2), 0);
    drawTextLine(*cell, text,
                 {.x = roundInt(box.minX()) - shown.left,
                  .y = roundInt(box.minY()) - shown.top + margin,
                  .width = width,
                  .height = height - margin},
                 {.size = size, .color = {colour.r, colour.g, colour.b, 255}});
    for (std::int64_t y = 0; y < cell->height(); ++y)
        std::memcpy(screen(y), cell->row(y), rowBytes);
}

} // namespace zorvan
