#include <zorvan/media/CGImage.h>

#include <zorvan/media/CGContext.h>
#include <zorvan/media/ExifOrientationGeometry.h>
#include <zorvan/media/internal/checkRowByteCount.h>
#include <zorvan/platform/graphics/ExactTransforms.h>

#include <cmath>
#include <cstdio>
#include <new>
#include <optional>
#include <utility>

namespace zorvan {
namespace {

using Pointer = CGImage::Pointer;

Pointer refused() {
    std::puts("CGContext.createRGBBitmapContex cannot create context");
    return nullptr;
}

Pointer imageOf(std::optional<Bitmap> bitmap) {
    return bitmap ? CGImage::create(std::move(*bitmap)) : refused();
}

template <class Drawing>
Pointer drawn(const std::shared_ptr<CGContext>& context, Drawing&& drawing) {
    if (!context)
        return refused();
    drawing(*context);
    return std::move(*context).makeImage();
}

/// The same for drawings of our own, whose only exception is that of memory.
template <class Drawing>
Pointer redrawn(std::int64_t width, std::int64_t height, Drawing&& drawing) try {
    return drawn(CGContext::rgba(width, height), drawing);
} catch (const std::bad_alloc&) {
    return refused();
}

/// Rounded halves away from zero; absent when a side is no number that 64 bits hold.
std::optional<PixelRect> rounded(CGSize size) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    const double width = std::round(size.width);
    const double height = std::round(size.height);
    if (!(width >= -limit && width < limit && height >= -limit && height < limit))
        return std::nullopt;
    return PixelRect{0, 0, static_cast<std::int64_t>(width), static_cast<std::int64_t>(height)};
}

template <class Drawing>
Pointer redrawn(CGSize size, Drawing&& drawing) {
    const std::optional<PixelRect> pixels = rounded(size);
    return pixels ? redrawn(pixels->width, pixels->height, drawing) : refused();
}

/// The picture re-oriented with alpha last; absent when there is no memory.
std::optional<Bitmap> orientedBitmap(const Bitmap& source, std::int64_t exifValue) {
    if (source.layout() == BitmapLayout::rgba)
        return zorvan::oriented(source, exifValue);
    const std::optional<Bitmap> rgba = copied(source, BitmapLayout::rgba);
    return rgba ? zorvan::oriented(*rgba, exifValue) : std::nullopt;
}

bool isWholeNumber(double value) noexcept {
    return std::abs(value) <= 1e15 && std::trunc(value) == value;
}

} // namespace

Pointer CGImage::empty(std::int64_t width, std::int64_t height) {
    return drawn(CGContext::rgba(width, height), [](CGContext&) {});
}

Pointer CGImage::draw(std::int64_t width, std::int64_t height,
                      const std::function<void(CGContext&)>& drawing) {
    return drawn(CGContext::rgba(width, height), drawing);
}

Pointer CGImage::rgbaDraw(std::int64_t width, std::int64_t height,
                          const std::function<void(CGContext&)>& drawing) {
    return draw(width, height, drawing);
}

Pointer CGImage::argbDraw(std::int64_t width, std::int64_t height,
                          const std::function<void(CGContext&)>& drawing) {
    return drawn(CGContext::argb(width, height), drawing);
}

Pointer CGImage::oriented(std::int64_t exifValue) const {
    if (exifValue < 1 || exifValue > 8)
        return nullptr;
    // Turns and mirrors move whole pixels, so they are moved instead of drawn.
    return exifValue == 1 ? shared_from_this() : imageOf(orientedBitmap(bitmap(), exifValue));
}

Pointer CGImage::unoriented(std::int64_t exifValue) const {
    const auto geometry = ExifOrientationGeometry::make({.exifValue = exifValue});
    return geometry ? oriented(geometry->inverse) : nullptr;
}

Pointer CGImage::rotatedLeft() const { return oriented(std::int64_t{8}); }

Pointer CGImage::rotatedRight() const { return oriented(std::int64_t{6}); }

Pointer CGImage::oriented(AVCaptureVideoOrientation orientation) const {
    const auto exifValue = [&]() -> std::int64_t {
        switch (orientation) {
        case AVCaptureVideoOrientation::portrait:
            return 6;
        case AVCaptureVideoOrientation::portraitUpsideDown:
            return 8;
        case AVCaptureVideoOrientation::landscapeRight:
            return 1;
        case AVCaptureVideoOrientation::landscapeLeft:
            return 3;
        }
        std::puts("NOT SUPPORTED AVCAPTUREVIDEOORIENTATION");
        return 1;
    }();
    std::optional<Bitmap> result = orientedBitmap(bitmap(), exifValue);
    return result ? create(std::move(*result)) : nullptr;
}

Pointer CGImage::resizing(CGSize size) const {
    return redrawn(size, [&](CGContext& context) { context.draw(*this, CGRect(CGPoint(), size)); });
}

Pointer CGImage::fitting(CGSize size) const { return resizing(this->size().fitting(size)); }

Pointer CGImage::cropping(Insets by) const {
    const CGRect inset = rect().insetBy(by.dx, by.dy);
    const std::optional<PixelRect> pixels = rounded(CGSize(inset.width(), inset.height()));
    if (!pixels)
        return refused();
    checkRowByteCount(pixels->width);
    if (isWholeNumber(by.dx) && isWholeNumber(by.dy) && bitmap().layout() == BitmapLayout::rgba)
        return imageOf(cropped(bitmap(), {static_cast<std::int64_t>(by.dx.value),
                                          static_cast<std::int64_t>(by.dy.value), pixels->width,
                                          pixels->height}));
    return redrawn(pixels->width, pixels->height, [&](CGContext& context) {
        context.translateBy(-inset.x(), -inset.y());
        context.draw(*this, rect());
    });
}

Pointer CGImage::cropping(Fractions by) const {
    return cropping(Insets{.dx = size().width * by.px, .dy = size().height * by.py});
}

Pointer CGImage::cropping(Percent by) const {
    return cropping(Fractions{.px = by.percent.value, .py = by.percent.value});
}

Pointer CGImage::applying(const CGAffineTransform& t) const {
    const CGRect bounds = rect().applying(t);
    return redrawn(CGSize(bounds.width(), bounds.height()), [&](CGContext& context) {
        context.concatenate(t);
        context.draw(*this, rect());
    });
}

Pointer CGImage::drawnCopy() const { return imageOf(copied(bitmap(), BitmapLayout::rgba)); }

Pointer CGImage::rgbaDrawnCopy() const { return drawnCopy(); }

Pointer CGImage::argbDrawnCopy() const { return imageOf(copied(bitmap(), BitmapLayout::argb)); }

} // namespace zorvan
