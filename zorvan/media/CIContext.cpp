#include <zorvan/media/CIContext.h>

#include <zorvan/platform/graphics/DrawingTarget.h>
#include <zorvan/platform/graphics/parallelRows.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <vector>

namespace zorvan {

namespace {

/// Rounding in transforms is no reason for another row.
constexpr double tolerance = 1e-6;

/// A slanted picture is shrunk as a whole before it is drawn, which is not to happen for each tile.
std::int64_t rowsOfTile(const CGAffineTransform& t, std::int64_t rows) noexcept {
    const bool isUpright = (t.b == 0 && t.c == 0) || (t.a == 0 && t.d == 0);
    return isUpright ? 128 : rows;
}

CGRect wholePixels(const CGRect& rect) noexcept {
    const double left = std::floor(rect.minX() + tolerance);
    const double bottom = std::floor(rect.minY() + tolerance);
    return {left, bottom, std::ceil(rect.maxX() - tolerance) - left,
            std::ceil(rect.maxY() - tolerance) - bottom};
}

std::int64_t sideOf(double length) noexcept {
    constexpr double most = static_cast<double>(Bitmap::maximumPixelCount);
    return length > 0 && length <= most ? static_cast<std::int64_t>(length) : 0;
}

void unpremultiply(const std::uint8_t* from, float* to, std::int64_t count) noexcept {
    for (std::int64_t i = 0; i < count; ++i, from += 4, to += 4) {
        const float factor = from[3] ? 1.0F / static_cast<float>(from[3]) : 0.0F;
        for (int c = 0; c < 3; ++c)
            to[c] = static_cast<float>(from[c]) * factor;
        to[3] = static_cast<float>(from[3]) / 255.0F;
    }
}

/// What is no number counts as 0.
float held(float value) noexcept { return value > 0 ? std::min(value, 1.0F) : 0.0F; }

void premultiply(const float* from, std::uint8_t* to, std::int64_t count) noexcept {
    for (std::int64_t i = 0; i < count; ++i, from += 4, to += 4) {
        const float alpha = held(from[3]);
        for (int c = 0; c < 3; ++c)
            to[c] = static_cast<std::uint8_t>(held(from[c]) * alpha * 255.0F + 0.5F);
        to[3] = static_cast<std::uint8_t>(alpha * 255.0F + 0.5F);
    }
}

void changeRow(std::uint8_t* row, std::int64_t width,
               const std::vector<CIImage::PixelChange>& changes) {
    constexpr std::int64_t length = 512;
    float pixels[length * 4];
    for (std::int64_t x = 0; x < width; x += length) {
        const std::int64_t count = std::min(length, width - x);
        unpremultiply(row + x * 4, pixels, count);
        for (const CIImage::PixelChange& change : changes)
            change(pixels, count);
        premultiply(pixels, row + x * 4, count);
    }
}

} // namespace

CGImage::Pointer CIContext::createCGImage(const CIImage::Pointer& image) const {
    return image ? createCGImage(image, image->extent()) : nullptr;
}

CGImage::Pointer CIContext::createCGImage(const CIImage::Pointer& image, const CGRect& from) const {
    if (!image || from.isEmpty())
        return nullptr;
    const CGRect rect = wholePixels(from);
    std::optional<Bitmap> bitmap = Bitmap::make(sideOf(rect.width()), sideOf(rect.height()));
    if (!bitmap)
        return nullptr;
    const CGAffineTransform toPixels(1, 0, 0, -1, -rect.minX(), rect.maxY());
    DrawingStyle style;
    for (const CGPath& crop : image->crops_)
        style.clip =
            DrawingClip::make(crop.applying(toPixels), CGPathFillRule::winding, style.clip);
    const CGAffineTransform placement = image->placement_.concatenating(toPixels);
    // Colours change inside the extent only, whatever they do to transparent pixels.
    const CGRect extent = wholePixels(image->extent()).intersection(rect);
    const CGRect changed = extent.isNull() ? CGRect() : extent.applying(toPixels);
    const auto left = static_cast<std::int64_t>(changed.minX());
    const auto width = static_cast<std::int64_t>(changed.width());

    const auto drawTile = [&](std::int64_t first, std::int64_t last) {
        DrawingTarget tile = DrawingTarget::of(*bitmap);
        tile.pixels = bitmap->row(first);
        tile.y = first;
        tile.height = last - first;
        drawPicture(tile, image->source_->bitmap(), placement, style);
        if (image->changes_.empty())
            return;
        const auto top = static_cast<std::int64_t>(changed.minY());
        const auto bottom = static_cast<std::int64_t>(changed.maxY());
        for (std::int64_t y = std::max(first, top); y < std::min(last, bottom); ++y)
            changeRow(bitmap->row(y) + left * 4, width, image->changes_);
    };
    try {
        parallelRows(bitmap->height(), rowsOfTile(placement, bitmap->height()), drawTile);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return CGImage::create(std::move(*bitmap));
}

} // namespace zorvan
