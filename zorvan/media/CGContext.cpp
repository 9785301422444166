#include <zorvan/media/CGContext.h>

#include <zorvan/media/CGImage.h>
#include <zorvan/media/internal/checkRowByteCount.h>
#include <zorvan/platform/graphics/drawBitmap.h>

#include <new>
#include <optional>

namespace zorvan {

CGContext::CGContext(Key, Bitmap bitmap)
    : width_(bitmap.width()), height_(bitmap.height()), layout_(bitmap.layout()),
      bitmap_(std::make_shared<Bitmap>(std::move(bitmap))) {}

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

Bitmap& CGContext::writableBitmap() {
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

void CGContext::restoreGState() noexcept {
    if (savedTransforms_.empty())
        return;
    ctm_ = savedTransforms_.back();
    savedTransforms_.pop_back();
}

void CGContext::draw(const CGImage& image, const CGRect& rect) {
    if (!bitmap_ || rect.isEmpty())
        return;
    const Bitmap& source = image.bitmap();
    const CGAffineTransform toUser(rect.width() / static_cast<double>(source.width()), 0, 0,
                                   -rect.height() / static_cast<double>(source.height()),
                                   rect.minX(), rect.maxY());
    const CGAffineTransform toPixels(1, 0, 0, -1, 0, static_cast<double>(height_));
    Bitmap& target = writableBitmap();
    drawBitmap(source, toUser.concatenating(ctm_).concatenating(toPixels), target,
               isBlank_ ? Backdrop::transparent : Backdrop::arbitrary);
    isBlank_ = false;
}

std::shared_ptr<const CGImage> CGContext::makeImage() & {
    if (!bitmap_)
        return nullptr;
    if (hasGivenPixelsOut_) {
        std::optional<Bitmap> own = bitmap_->copy();
        return own ? CGImage::create(std::move(*own)) : nullptr;
    }
    isSharedWithImage_ = true;
    return CGImage::create(bitmap_);
}

std::shared_ptr<const CGImage> CGContext::makeImage() && {
    return bitmap_ ? CGImage::create(std::move(bitmap_)) : nullptr;
}

} // namespace zorvan
