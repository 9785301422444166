#pragma once

#include <zorvan/numbers-geometry/CGRect.h>
#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>
#include <new>
#include <optional>
#include <utility>

namespace zorvan {

/// Pixels that somebody else owns. A negative `bytesPerRow` reads the rows from the bottom up.
template <class Byte>
struct BasicPixelView {
    Byte* first;
    std::int64_t width;
    std::int64_t height;
    std::int64_t bytesPerRow;

    Byte* row(std::int64_t y) const noexcept { return first + y * bytesPerRow; }
    BasicPixelView flipped() const noexcept {
        return {row(height - 1), width, height, -bytesPerRow};
    }
    BasicPixelView window(std::int64_t x, std::int64_t y, std::int64_t w,
                          std::int64_t h) const noexcept {
        return {row(y) + x * 4, w, h, bytesPerRow};
    }
    operator BasicPixelView<const Byte>() const noexcept {
        return {first, width, height, bytesPerRow};
    }
};
using PixelView = BasicPixelView<std::uint8_t>;
using ConstPixelView = BasicPixelView<const std::uint8_t>;

inline ConstPixelView view(const Bitmap& bitmap) noexcept {
    return {bitmap.data(), bitmap.width(), bitmap.height(), bitmap.bytesPerRow()};
}
inline PixelView view(Bitmap& bitmap) noexcept {
    return {bitmap.data(), bitmap.width(), bitmap.height(), bitmap.bytesPerRow()};
}

/// What only the transforms may do with a bitmap: make one whose every pixel they are about to
/// write.
struct BitmapAccess {
    static std::optional<Bitmap> makeUndefined(std::int64_t width, std::int64_t height,
                                               BitmapLayout layout) {
        return Bitmap::make(width, height, layout, Bitmap::Contents::undefined);
    }
};

/// From the origin on, in pixels.
inline CGRect rectOf(const Bitmap& bitmap) noexcept {
    return {0, 0, static_cast<double>(bitmap.width()), static_cast<double>(bitmap.height())};
}

/// Throws `std::bad_alloc` where there is none.
inline Bitmap allocated(std::optional<Bitmap> bitmap) {
    if (!bitmap)
        throw std::bad_alloc();
    return std::move(*bitmap);
}

/// How many rows of that many pixels are worth a task of their own: about a quarter megabyte.
inline std::int64_t rowsPerTask(std::int64_t width) noexcept {
    constexpr std::int64_t pixelsPerTask = std::int64_t{1} << 16;
    return width >= pixelsPerTask ? 1 : pixelsPerTask / width;
}

} // namespace zorvan
