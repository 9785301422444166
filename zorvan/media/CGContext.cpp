#include <zorvan/media/CGContext.h>

#include <zorvan/media/CGImage.h>
#include <zorvan/media/NSGraphicsContext.h>
#include <zorvan/media/internal/checkRowByteCount.h>
#include <zorvan/platform/appkit/Canvas.h>
#include <zorvan/platform/graphics/drawBitmap.h>

#include <algorithm>
#include <new>
#include <optional>

namespace zorvan {

CGContext::CGContext(Key, Bitmap bitmap)
    : width_(bitmap.width()), height_(bitmap.height()), bytesPerRow_(bitmap.bytesPerRow()),
      layout_(bitmap.layout()), bitmap_(std::make_shared<Bitmap>(std::move(bitmap))) {}

CGContext::CGContext(Key, Bitmap& borrowed, const PixelRect& region)
    : width_(region.width), height_(region.height), bytesPerRow_(borrowed.bytesPerRow()),
      layout_(borrowed.layout()), borrowed_(&borrowed), region_(region), isBlank_(false) {}

std::shared_ptr<CGContext> CGContext::make(std::int64_t width, std::int64_t height,
                                           BitmapLayout layout) {
    checkRowByteCount(width);
    std::optional<Bitmap> bitmap = Bitmap::make(width, height, layout);
    return bitmap ? std::make_shared<CGContext>(Key{}, std::move(*bitmap)) : nullptr;
}

std::shared_ptr<CGContext> CGContext::rgba(std::int64_t width, std::int64_t height) {
    return make(width, height, BitmapLayout::rgba);
}

std::shared_ptr<CGContext> CGContext::argb(std::int64_t width, std::int64_t height) {
    return make(width, height, BitmapLayout::argb);
}

std::shared_ptr<CGContext> CGContext::create(Bitmap& bitmap) {
    return create(bitmap, {0, 0, bitmap.width(), bitmap.height()});
}

std::shared_ptr<CGContext> CGContext::create(Bitmap& bitmap, const PixelRect& region) {
    const auto end = [](std::int64_t start, std::int64_t length, std::int64_t limit) {
        std::int64_t sum = 0;
        return __builtin_add_overflow(start, length, &sum) ? limit : std::min(sum, limit);
    };
    const std::int64_t left = std::max<std::int64_t>(region.x, 0);
    const std::int64_t top = std::max<std::int64_t>(region.y, 0);
    const std::int64_t right = end(region.x, region.width, bitmap.width());
    const std::int64_t bottom = end(region.y, region.height, bitmap.height());
    if (left >= right || top >= bottom)
        return nullptr;
    return std::make_shared<CGContext>(Key{}, bitmap,
                                       PixelRect{left, top, right - left, bottom - top});
}

std::shared_ptr<CGContext> CGContext::create(Canvas& canvas) {
    const std::shared_ptr<CGContext> context = create(canvas.bitmap());
    if (!context)
        return nullptr;
    const CGAffineTransform upward(1, 0, 0, -1, 0, static_cast<double>(context->height()));
    context->state_.ctm = context->base_ = canvas.transform().concatenating(upward);
    context->clip(canvas.clip());
    return context;
}

std::shared_ptr<CGContext> CGContext::current() {
    const auto context = NSGraphicsContext::current();
    return context ? context->cgContext() : nullptr;
}

void CGContext::push() {
    const auto wrapper = NSGraphicsContext::create(shared_from_this(), false);
    NSGraphicsContext::saveGraphicsState();
    NSGraphicsContext::setCurrent(wrapper);
}

void CGContext::pop() { NSGraphicsContext::restoreGraphicsState(); }

Bitmap& CGContext::writableBitmap() {
    if (borrowed_)
        return *borrowed_;
    if (isSharedWithImage_) {
        std::optional<Bitmap> own = bitmap_->copy();
        if (!own)
            throw std::bad_alloc();
        bitmap_ = std::make_shared<Bitmap>(std::move(*own));
        isSharedWithImage_ = false;
    }
    return *bitmap_;
}

std::uint8_t* CGContext::uint8Data() {
    if (borrowed_)
        return borrowed_->row(region_.y) + region_.x * 4;
    if (!bitmap_)
        return nullptr;
    // Only written when it changes something: the threads of a parallel fill may ask as well.
    if (!hasGivenPixelsOut_ || isSharedWithImage_ || isBlank_) {
        writableBitmap();
        hasGivenPixelsOut_ = true;
        isBlank_ = false;
    }
    return bitmap_->data();
}

DrawingTarget CGContext::drawingTarget() {
    if (!hasPixels())
        return {nullptr, 0, 0, 0, layout_};
    Bitmap& bitmap = writableBitmap();
    isBlank_ = false;
    return {bitmap.row(region_.y) + region_.x * 4, width_, height_, bytesPerRow_, layout_};
}

CGAffineTransform CGContext::toPixels() const noexcept {
    return state_.ctm.concatenating(
        CGAffineTransform(1, 0, 0, -1, 0, static_cast<double>(height_)));
}

void CGContext::restoreGState() noexcept {
    if (savedStates_.empty())
        return;
    state_ = std::move(savedStates_.back());
    savedStates_.pop_back();
}

void CGContext::draw(const CGImage& image, const CGRect& rect) {
    if (!hasPixels() || rect.isEmpty())
        return;
    const Bitmap& source = image.bitmap();
    const CGAffineTransform toUser(rect.width() / static_cast<double>(source.width()), 0, 0,
                                   -rect.height() / static_cast<double>(source.height()),
                                   rect.minX(), rect.maxY());
    const CGAffineTransform placement = toUser.concatenating(toPixels());
    const DrawingStyle& style = state_.style;
    const bool isPlain = style.operation == NSCompositingOperation::sourceOver &&
                         style.alpha == 1 && !style.clip && !borrowed_;
    if (!isPlain)
        return drawPicture(drawingTarget(), source, placement, style);
    Bitmap& target = writableBitmap();
    drawBitmap(source, placement, target, isBlank_ ? Backdrop::transparent : Backdrop::arbitrary);
    isBlank_ = false;
}

std::shared_ptr<const CGImage> CGContext::makeImage() & {
    if (!hasPixels())
        return nullptr;
    if (borrowed_ || hasGivenPixelsOut_) {
        std::optional<Bitmap> own = borrowed_ ? cropped(*borrowed_, region_) : bitmap_->copy();
        return own ? CGImage::create(std::move(*own)) : nullptr;
    }
    isSharedWithImage_ = true;
    return CGImage::create(bitmap_);
}

std::shared_ptr<const CGImage> CGContext::makeImage() && {
    if (borrowed_) {
        const auto copy = static_cast<CGContext&>(*this).makeImage();
        borrowed_ = nullptr;
        return copy;
    }
    return bitmap_ ? CGImage::create(std::move(bitmap_)) : nullptr;
}

} // namespace zorvan
