#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace zorvan {

/// Where the alpha component stands among the four bytes of a pixel. Colour is premultiplied by it.
enum class BitmapLayout { rgba = 1, argb = 2 };

/// A block of pixels: 8 bits a component, 4 bytes a pixel, rows of `width * 4` bytes without
/// padding, the top row first, alpha premultiplied. Owns its storage; moves, and copies only when
/// asked to.
class Bitmap {
public:
    /// The most pixels a bitmap may hold: 2^29, which is 2 GiB.
    static constexpr std::int64_t maximumPixelCount = std::int64_t{1} << 29;

    /// A transparent bitmap. Absent when either side is below 1, when there would be more than
    /// `maximumPixelCount` pixels, or when there is no memory for them.
    static std::optional<Bitmap> make(std::int64_t width, std::int64_t height,
                                      BitmapLayout layout = BitmapLayout::rgba);

    /// A bitmap over pixels laid out as ours that somebody else has made: they are neither copied
    /// nor changed, and `owner` is let go with the bitmap. Null when the size is none for a bitmap.
    static std::shared_ptr<const Bitmap> sharing(const std::uint8_t* pixels, std::int64_t width,
                                                 std::int64_t height, BitmapLayout layout,
                                                 std::shared_ptr<const void> owner);

    /// The same pixels in storage of their own; absent when there is no memory for them.
    std::optional<Bitmap> copy() const;

    /// In pixels and bytes. A row has no padding.
    /// @{
    std::int64_t width() const noexcept { return width_; }
    std::int64_t height() const noexcept { return height_; }
    std::int64_t bytesPerRow() const noexcept { return width_ * 4; }
    std::int64_t byteCount() const noexcept { return bytesPerRow() * height_; }
    BitmapLayout layout() const noexcept { return layout_; }
    /// @}

    /// The first byte of the top row; lives as long as the bitmap.
    /// @{
    std::uint8_t* data() noexcept { return pixels_.get(); }
    const std::uint8_t* data() const noexcept { return pixels_.get(); }
    /// @}
    /// The first byte of row `y`, counted from the top.
    /// @{
    std::uint8_t* row(std::int64_t y) noexcept { return data() + y * bytesPerRow(); }
    const std::uint8_t* row(std::int64_t y) const noexcept { return data() + y * bytesPerRow(); }
    /// @}

private:
    friend struct BitmapAccess;

    struct Free {
        std::size_t byteCount; // 0 for pixels that somebody else has made
        std::shared_ptr<const void> owner = {};
        void operator()(std::uint8_t* pixels) const noexcept;
    };

    enum class Contents { transparent, undefined };
    static std::optional<Bitmap> make(std::int64_t width, std::int64_t height, BitmapLayout layout,
                                      Contents contents);

    static bool isSize(std::int64_t width, std::int64_t height) noexcept {
        return width >= 1 && height >= 1 && width <= maximumPixelCount / height;
    }
    Bitmap(std::int64_t width, std::int64_t height, BitmapLayout layout, std::uint8_t* pixels,
           Free free);

    std::int64_t width_;
    std::int64_t height_;
    BitmapLayout layout_;
    std::unique_ptr<std::uint8_t, Free> pixels_;
};

} // namespace zorvan
