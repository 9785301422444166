#pragma once

#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdint>
#include <optional>

namespace zorvan {

// Transforms that move pixels without changing them, at the speed of memory and on all processors.
// Each result is absent when there is no memory for it.

/// The picture as an EXIF orientation value says it is to be looked at: 1 as it is, 2 mirrored left
/// to right, 3 turned by a half, 4 mirrored top to bottom, 5 mirrored along the diagonal from the
/// top left, 6 turned a quarter clockwise, 7 mirrored along the diagonal from the top right, 8
/// turned a quarter counter-clockwise. Absent outside 1 to 8.
[[nodiscard]] std::optional<Bitmap> oriented(const Bitmap& source, std::int64_t exifValue);

/// A rectangle of pixels; rows are counted downwards from the top one.
struct PixelRect {
    std::int64_t x;      ///< Of the left edge; negative outside the picture.
    std::int64_t y;      ///< Of the top edge; negative outside the picture.
    std::int64_t width;  ///< In pixels.
    std::int64_t height; ///< In pixels.

    friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// What lies inside `window`, transparent where the window reaches beyond the picture. Absent when
/// the window is no size for a bitmap.
[[nodiscard]] std::optional<Bitmap> cropped(const Bitmap& source, PixelRect window);

/// The same pixels, the components in the order of `layout`.
[[nodiscard]] std::optional<Bitmap> copied(const Bitmap& source, BitmapLayout layout);

} // namespace zorvan
