#include <zorvan/platform/graphics/ExactTransforms.h>

#include <zorvan/platform/graphics/internal/PixelKernels.h>
#include <zorvan/platform/graphics/internal/orientPixels.h>
#include <zorvan/platform/graphics/parallelRows.h>

#include <algorithm>

namespace zorvan {
namespace {

/// Results larger than this are written past the caches, which they would only flush.
constexpr std::int64_t streamingPixelCount = std::int64_t{2} << 20;

bool isStreamed(PixelView target) noexcept {
    return target.width * target.height >= streamingPixelCount;
}

/// Copies each row by the kernel, on all processors.
void copyRows(PixelKernels::Copy copy, ConstPixelView source, PixelView target) {
    const bool streaming = isStreamed(target);
    parallelRows(target.height, rowsPerTask(target.width),
                 [&](std::int64_t first, std::int64_t last) {
                     for (std::int64_t y = first; y < last; ++y)
                         copy(target.row(y), source.row(y), target.width, streaming);
                 });
}

constexpr std::int64_t blockColumns = 512;
constexpr std::int64_t blockRows = 16; // a cache line of each source row

/// Turns one block in a buffer that stays in the cache, so that the target is written in long runs.
void transposeBlock(ConstPixelView source, PixelView target, std::int64_t x, std::int64_t y,
                    bool streaming) {
    alignas(64) std::uint8_t block[blockColumns * blockRows * 4];
    const std::int64_t columns = std::min(blockColumns, target.width - x);
    const std::int64_t rows = std::min(blockRows, target.height - y);
    pixelKernels().transpose(block, blockColumns * 4, source.row(x) + y * 4, source.bytesPerRow,
                             columns, rows);
    for (std::int64_t i = 0; i < rows; ++i)
        pixelKernels().copy(target.row(y + i) + x * 4, block + i * blockColumns * 4, columns,
                            streaming);
}

void transposeRows(ConstPixelView source, PixelView target) {
    const bool streaming = isStreamed(target);
    const std::int64_t bands = (target.height - 1) / blockRows + 1;
    parallelRows(bands, rowsPerTask(target.width * blockRows),
                 [&](std::int64_t first, std::int64_t last) {
                     for (std::int64_t x = 0; x < target.width; x += blockColumns)
                         for (std::int64_t band = first; band < last; ++band)
                             transposeBlock(source, target, x, band * blockRows, streaming);
                 });
}

/// The part of 0 to `length` that `[from, from + count)` covers, without overflow.
struct Span {
    std::int64_t first;
    std::int64_t last;
};
Span overlap(std::int64_t from, std::int64_t count, std::int64_t length) noexcept {
    if (from >= length || from <= -count)
        return {0, 0};
    return {std::max<std::int64_t>(from, 0), from > length - count ? length : from + count};
}

} // namespace

void orientPixels(ConstPixelView source, std::int64_t exifValue, PixelView target) {
    const PixelKernels& kernels = pixelKernels();
    switch (exifValue) {
    case 1:
        return copyRows(kernels.copy, source, target);
    case 2:
        return copyRows(kernels.reverse, source, target);
    case 3:
        return copyRows(kernels.reverse, source.flipped(), target);
    case 4:
        return copyRows(kernels.copy, source.flipped(), target);
    case 5:
        return transposeRows(source, target);
    case 6:
        return transposeRows(source.flipped(), target);
    case 7:
        return transposeRows(source.flipped(), target.flipped());
    default:
        return transposeRows(source, target.flipped());
    }
}

std::optional<Bitmap> oriented(const Bitmap& source, std::int64_t exifValue) {
    if (exifValue < 1 || exifValue > 8)
        return std::nullopt;
    const bool swaps = swapsSides(exifValue);
    auto result =
        BitmapAccess::makeUndefined(swaps ? source.height() : source.width(),
                                    swaps ? source.width() : source.height(), source.layout());
    if (result)
        orientPixels(view(source), exifValue, view(*result));
    return result;
}

std::optional<Bitmap> cropped(const Bitmap& source, PixelRect window) {
    if (window.width < 1 || window.height < 1)
        return std::nullopt;
    const Span columns = overlap(window.x, window.width, source.width());
    const Span rows = overlap(window.y, window.height, source.height());
    const ConstPixelView part = view(source).window(
        columns.first, rows.first, columns.last - columns.first, rows.last - rows.first);
    const bool isInside = part.width == window.width && part.height == window.height;
    auto result = isInside
                      ? BitmapAccess::makeUndefined(window.width, window.height, source.layout())
                      : Bitmap::make(window.width, window.height, source.layout());
    if (result && part.width > 0 && part.height > 0)
        copyRows(pixelKernels().copy, part,
                 view(*result).window(columns.first - window.x, rows.first - window.y, part.width,
                                      part.height));
    return result;
}

std::optional<Bitmap> copied(const Bitmap& source, BitmapLayout layout) {
    const PixelKernels& kernels = pixelKernels();
    const auto copy = layout == source.layout()      ? kernels.copy
                      : layout == BitmapLayout::argb ? kernels.alphaFirst
                                                     : kernels.alphaLast;
    auto result = BitmapAccess::makeUndefined(source.width(), source.height(), layout);
    if (result)
        copyRows(copy, view(source), view(*result));
    return result;
}

} // namespace zorvan
