#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

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

    /// The same pixels in storage of their own; absent when there is no memory for them.
    std::optional<Bitmap> copy() const;

    std::int64_t width() const noexcept { return width_; }
    std::int64_t height() const noexcept { return height_; }
    std::int64_t bytesPerRow() const noexcept { return width_ * 4; }
    std::int64_t byteCount() const noexcept { return bytesPerRow() * height_; }
    BitmapLayout layout() const noexcept { return layout_; }

    std::uint8_t* data() noexcept { return pixels_.get(); }
    const std::uint8_t* data() const noexcept { return pixels_.get(); }
    /// The first byte of row `y`, counted from the top.
    std::uint8_t* row(std::int64_t y) noexcept { return data() + y * bytesPerRow(); }
    const std::uint8_t* row(std::int64_t y) const noexcept { return data() + y * bytesPerRow(); }

private:
    friend struct BitmapAccess;

    struct Free {
        std::size_t byteCount;
        void operator()(std::uint8_t* pixels) const noexcept;
    };

    enum class Contents { transparent, undefined };
    static std::optional<Bitmap> make(std::int64_t width, std::int64_t height, BitmapLayout layout,
                                      Contents contents);

    Bitmap(std::int64_t width, std::int64_t height, BitmapLayout layout, std::uint8_t* pixels)
        : width_(width), height_(height), layout_(layout),
          pixels_(pixels, Free{static_cast<std::size_t>(width * height) * 4}) {}

    std::int64_t width_;
    std::int64_t height_;
    BitmapLayout layout_;
    std::unique_ptr<std::uint8_t, Free> pixels_;
};

} // namespace zorvan
