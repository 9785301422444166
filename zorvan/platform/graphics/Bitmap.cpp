#include <zorvan/platform/graphics/Bitmap.h>

#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/graphics/internal/PixelStore.h>

namespace zorvan {

void Bitmap::Free::operator()(std::uint8_t* pixels) const noexcept {
    if (byteCount > 0)
        PixelStore::release(pixels, byteCount);
}

Bitmap::Bitmap(std::int64_t width, std::int64_t height, BitmapLayout layout, std::uint8_t* pixels,
               Free free)
    : width_(width), height_(height), layout_(layout), pixels_(pixels, std::move(free)) {}

std::optional<Bitmap> Bitmap::make(std::int64_t width, std::int64_t height, BitmapLayout layout) {
    return make(width, height, layout, Contents::transparent);
}

std::optional<Bitmap> Bitmap::make(std::int64_t width, std::int64_t height, BitmapLayout layout,
                                   Contents contents) {
    if (!isSize(width, height))
        return std::nullopt;
    const auto byteCount = static_cast<std::size_t>(width * height) * 4;
    std::uint8_t* pixels = contents == Contents::transparent ? PixelStore::takeZeroed(byteCount)
                                                             : PixelStore::take(byteCount);
    if (!pixels)
        return std::nullopt;
    return Bitmap(width, height, layout, pixels, Free{byteCount});
}

std::shared_ptr<const Bitmap> Bitmap::sharing(const std::uint8_t* pixels, std::int64_t width,
                                              std::int64_t height, BitmapLayout layout,
                                              std::shared_ptr<const void> owner) {
    if (!isSize(width, height))
        return nullptr;
    // Nobody gets to write: the bitmap is const.
    return std::make_shared<const Bitmap>(Bitmap(
        width, height, layout, const_cast<std::uint8_t*>(pixels), Free{0, std::move(owner)}));
}

std::optional<Bitmap> Bitmap::copy() const { return copied(*this, layout_); }

} // namespace zorvan
