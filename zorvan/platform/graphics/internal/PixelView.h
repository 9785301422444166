#pragma once

#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>

namespace zorvan {

/// Pixels that somebody else owns. A negative `bytesPerRow` reads the rows from the bottom up.
struct ConstPixelView {
    const std::uint8_t* first;
    std::int64_t width;
    std::int64_t height;
    std::int64_t bytesPerRow;

    const std::uint8_t* row(std::int64_t y) const noexcept { return first + y * bytesPerRow; }
    ConstPixelView flipped() const noexcept {
        return {row(height - 1), width, height, -bytesPerRow};
    }
};

struct PixelView {
    std::uint8_t* first;
    std::int64_t width;
    std::int64_t height;
    std::int64_t bytesPerRow;

    std::uint8_t* row(std::int64_t y) const noexcept { return first + y * bytesPerRow; }
    PixelView flipped() const noexcept { return {row(height - 1), width, height, -bytesPerRow}; }
    PixelView window(std::int64_t x, std::int64_t y, std::int64_t w,
                     std::int64_t h) const noexcept {
        return {row(y) + x * 4, w, h, bytesPerRow};
    }
    operator ConstPixelView() const noexcept { return {first, width, height, bytesPerRow}; }
};

inline ConstPixelView view(const Bitmap& bitmap) noexcept {
    return {bitmap.data(), bitmap.width(), bitmap.height(), bitmap.bytesPerRow()};
}
inline PixelView view(Bitmap& bitmap) noexcept {
    return {bitmap.data(), bitmap.width(), bitmap.height(), bitmap.bytesPerRow()};
}

/// How many rows of that many pixels are worth a task of their own: about a quarter megabyte.
inline std::int64_t rowsPerTask(std::int64_t width) noexcept {
    constexpr std::int64_t pixelsPerTask = std::int64_t{1} << 16;
    return width >= pixelsPerTask ? 1 : pixelsPerTask / width;
}

} // namespace zorvan
