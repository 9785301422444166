#include <zorvan/platform/graphics/Bitmap.h>

#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/graphics/internal/PixelStore.h>

namespace zorvan {

void Bitmap::Free::operator()(std::uint8_t* pixels) const noexcept {
    PixelStore::release(pixels, byteCount);
}

std::optional<Bitmap> Bitmap::make(std::int64_t width, std::int64_t height, BitmapLayout layout) {
    return make(width, height, layout, Contents::transparent);
}

std::optional<Bitmap> Bitmap::make(std::int64_t width, std::int64_t height, BitmapLayout layout,
                                   Contents contents) {
    if (width < 1 || height < 1 || width > maximumPixelCount / height)
        return std::nullopt;
    const auto byteCount = static_cast<std::size_t>(width * height) * 4;
    std::uint8_t* pixels = contents == Contents::transparent ? PixelStore::takeZeroed(byteCount)
                                                             : PixelStore::take(byteCount);
    if (!pixels)
        return std::nullopt;
    return Bitmap(width, height, layout, pixels);
}

std::optional<Bitmap> Bitmap::copy() const { return copied(*this, layout_); }

} // namespace zorvan
