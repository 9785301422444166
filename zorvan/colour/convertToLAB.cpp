#include <zorvan/colour/convertToLAB.h>
#include <zorvan/colour/internal/colorimetry.h>
#include <zorvan/platform/foundation/fatalError.h>

#include <algorithm>
#include <string>

namespace zorvan {

std::size_t convertToLAB(std::span<const std::uint8_t> pixels, std::span<LAB> result,
                         std::size_t bytesPerPixel) noexcept {
    if (bytesPerPixel < 3)
        fatalError("A pixel needs three bytes, not " + std::to_string(bytesPerPixel) + ".");
    const std::size_t count = std::min(pixels.size() / bytesPerPixel, result.size());
    const colorimetry::LinearTable& linear = colorimetry::linearOfByte();
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* channels = pixels.data() + i * bytesPerPixel;
        const RGB rgb(channels[0], channels[1], channels[2]);
        result[i] = colorimetry::labOf(colorimetry::xyzOf(rgb, linear));
    }
    return count;
}

} // namespace zorvan
