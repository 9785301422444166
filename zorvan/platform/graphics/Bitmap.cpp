#include <zorvan/platform/graphics/Bitmap.h>

#include <cstdlib>
#include <cstring>

namespace zorvan {

void Bitmap::Free::operator()(std::uint8_t* pixels) const noexcept { std::free(pixels); }

std::optional<Bitmap> Bitmap::make(std::int64_t width, std::int64_t height, BitmapLayout layout) {
    if (width < 1 || height < 1 || width > maximumPixelCount / height)
        return std::nullopt;
    void* pixels = std::calloc(static_cast<std::size_t>(width * height), 4);
    if (!pixels)
        return std::nullopt;
    return Bitmap(width, height, layout, static_cast<std::uint8_t*>(pixels));
}

std::optional<Bitmap> Bitmap::copy() const {
    std::optional<Bitmap> result = make(width_, height_, layout_);
    if (result)
        std::memcpy(result->data(), data(), static_cast<std::size_t>(byteCount()));
    return result;
}

} // namespace zorvan
