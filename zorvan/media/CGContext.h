#pragma once

#include <zorvan/media/byteOffset.h>
#include <zorvan/numbers-geometry/CGAffineTransform.h>
#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/graphics/Bitmap.h>
#include <zorvan/platform/graphics/parallelRows.h>

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace zorvan {

class CGImage;

/// A bitmap to draw in: 8 bits a component, 4 bytes a pixel, rows of `width * 4` bytes with the top
/// row first, alpha premultiplied. Drawing coordinates count pixels from the bottom left corner, y
/// upwards, under the current transform.
///
/// Not safe to share between threads, but for what a parallel fill says.
class CGContext {
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

    CGContext(const CGContext&) = delete;
    CGContext& operator=(const CGContext&) = delete;

    std::int64_t width() const noexcept { return width_; }
    std::int64_t height() const noexcept { return height_; }
    std::int64_t bitsPerComponent() const noexcept { return 8; }
    std::int64_t bitsPerPixel() const noexcept { return 32; }
    std::int64_t bytesPerRow() const noexcept { return width_ * 4; }
    BitmapLayout layout() const noexcept { return layout_; }

    /// Where pixel (x, y) begins among the bytes, y counting rows downwards. Not checked against
    /// the bitmap; outside the signed 64-bit range it stops the program.
    std::int64_t offset(std::int64_t x, std::int64_t y) const noexcept {
        return byteOffset(bytesPerRow(), bitsPerPixel(), bitsPerComponent(), x, y);
    }

    /// The pixels, for reading and writing, until the context goes or gives them up; null after
    /// that.
    std::uint8_t* uint8Data();

    /// Takes what is drawn from here on to the bitmap; the identity at first.
    const CGAffineTransform& ctm() const noexcept { return ctm_; }
    /// Each of these happens before what the transform did so far.
    void translateBy(double x, double y) noexcept { ctm_ = ctm_.translatedBy(x, y); }
    void scaleBy(double x, double y) noexcept { ctm_ = ctm_.scaledBy(x, y); }
    /// Counter-clockwise, in radians.
    void rotate(double angle) noexcept { ctm_ = ctm_.rotatedBy(angle); }
    void concatenate(const CGAffineTransform& t) noexcept { ctm_ = t.concatenating(ctm_); }

    /// Keeps the transform for `restoreGState`; the two nest.
    void saveGState() { savedTransforms_.push_back(ctm_); }
    /// Does nothing when nothing is saved.
    void restoreGState() noexcept;
    /// Calls `body` between `saveGState` and `restoreGState`, also when it throws.
    template <std::invocable Body>
    void useTemporaryGState(Body&& body);

    /// Draws a picture, stretched to the (standardised) rectangle, over what is there. What the
    /// transform does to pixels is written at `drawBitmap`.
    void draw(const CGImage& image, const CGRect& rect);

    /// The picture as it is now. Shares the pixels until the next drawing, so that nothing is
    /// copied unless one follows; but once `uint8Data` has given them away, it copies.
    std::shared_ptr<const CGImage> makeImage() &;
    /// The same without ever a copy: the context gives up its pixels, and draws no more.
    std::shared_ptr<const CGImage> makeImage() &&;

private:
    struct Key {};

public:
    CGContext(Key, Bitmap bitmap);

private:
    static std::shared_ptr<CGContext> make(std::int64_t width, std::int64_t height,
                                           BitmapLayout layout);
    Bitmap& writableBitmap();

    std::int64_t width_;
    std::int64_t height_;
    BitmapLayout layout_;
    std::shared_ptr<Bitmap> bitmap_;
    bool isBlank_ = true;
    bool isSharedWithImage_ = false;
    bool hasGivenPixelsOut_ = false;
    CGAffineTransform ctm_;
    std::vector<CGAffineTransform> savedTransforms_;
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

} // namespace zorvan
