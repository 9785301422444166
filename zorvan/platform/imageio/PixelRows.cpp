#include <zorvan/platform/imageio/internal/PixelRows.h>

#include <algorithm>

namespace zorvan::imageio {

void premultiply(std::uint8_t* pixels, std::int64_t count) noexcept {
    for (std::int64_t i = 0; i < count; ++i, pixels += 4) {
        const unsigned alpha = pixels[3];
        for (int c = 0; c < 3; ++c)
            pixels[c] = static_cast<std::uint8_t>(dividedBy255(pixels[c] * alpha));
    }
}

void unpremultiply(const std::uint8_t* premultiplied, std::uint8_t* out,
                   std::int64_t count) noexcept {
    for (std::int64_t i = 0; i < count; ++i, premultiplied += 4, out += 4) {
        const unsigned alpha = premultiplied[3];
        for (int c = 0; c < 3; ++c) {
            const unsigned colour = alpha == 0 ? 0 : (premultiplied[c] * 255U + alpha / 2) / alpha;
            out[c] = static_cast<std::uint8_t>(std::min(colour, 255U));
        }
        out[3] = static_cast<std::uint8_t>(alpha);
    }
}

void finishAlpha(std::uint8_t* pixels, std::int64_t count, bool isPremultiplied) noexcept {
    if (!isPremultiplied)
        return premultiply(pixels, count);
    for (std::int64_t i = 0; i < count; ++i, pixels += 4)
        for (int c = 0; c < 3; ++c)
            pixels[c] = std::min(pixels[c], pixels[3]);
}

void inkToRgba(const std::uint8_t* cmyk, std::uint8_t* rgba, std::int64_t count) noexcept {
    for (std::int64_t i = 0; i < count; ++i, cmyk += 4, rgba += 4) {
        const unsigned light = 255U - cmyk[3];
        for (int c = 0; c < 3; ++c)
            rgba[c] = static_cast<std::uint8_t>(dividedBy255((255U - cmyk[c]) * light));
        rgba[3] = 255;
    }
}

} // namespace zorvan::imageio
