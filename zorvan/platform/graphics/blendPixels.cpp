#include <zorvan/platform/graphics/internal/blendPixels.h>

#include <algorithm>
#include <array>

namespace zorvan {

namespace {

using Operation = NSCompositingOperation;

/// Red, green and blue, not premultiplied.
using Color = std::array<float, 3>;

/// What both keep back from white, added up.
void addDarkness(const std::uint8_t* source, std::uint8_t* target) noexcept {
    const int alpha = std::min(255, source[3] + target[3]);
    for (int c = 0; c < 3; ++c) {
        const int dark = source[3] - source[c] + target[3] - target[c];
        target[c] = static_cast<std::uint8_t>(std::max(0, alpha - dark));
    }
    target[3] = static_cast<std::uint8_t>(alpha);
}

float luminosity(const Color& c) noexcept { return 0.3F * c[0] + 0.59F * c[1] + 0.11F * c[2]; }

float saturation(const Color& c) noexcept {
    return std::max({c[0], c[1], c[2]}) - std::min({c[0], c[1], c[2]});
}

/// Moved to that luminosity, then drawn towards grey as far as it leaves 0 to 1.
Color withLuminosity(Color c, float wanted) noexcept {
    const float shift = wanted - luminosity(c);
    for (float& component : c)
        component += shift;
    const float least = std::min({c[0], c[1], c[2]}), most = std::max({c[0], c[1], c[2]});
    float share = 1;
    if (least < 0)
        share = wanted / (wanted - least);
    if (most > 1)
        share = std::min(share, (1 - wanted) / (most - wanted));
    for (float& component : c)
        component = wanted + (component - wanted) * share;
    return c;
}

Color withSaturation(const Color& c, float wanted) noexcept {
    const float least = std::min({c[0], c[1], c[2]}), range = saturation(c);
    if (range <= 0)
        return {};
    return {(c[0] - least) / range * wanted, (c[1] - least) / range * wanted,
            (c[2] - least) / range * wanted};
}

Color mixed(Operation operation, const Color& source, const Color& target) noexcept {
    switch (operation) {
    case Operation::hue:
        return withLuminosity(withSaturation(source, saturation(target)), luminosity(target));
    case Operation::saturation:
        return withLuminosity(withSaturation(target, saturation(source)), luminosity(target));
    case Operation::color:
        return withLuminosity(source, luminosity(target));
    default:
        return withLuminosity(target, luminosity(source));
    }
}

Color colorOf(const std::uint8_t* pixel, int red) noexcept {
    const float factor = pixel[3] ? 1 / static_cast<float>(pixel[3]) : 0;
    return {static_cast<float>(pixel[red]) * factor, static_cast<float>(pixel[1]) * factor,
            static_cast<float>(pixel[2 - red]) * factor};
}

void mixColors(Operation operation, int red, const std::uint8_t* source,
               std::uint8_t* target) noexcept {
    const Color mix = mixed(operation, colorOf(source, red), colorOf(target, red));
    const std::array<int, 3> places{red, 1, 2 - red};
    const float sourceAlpha = static_cast<float>(source[3]) / 255;
    const float targetAlpha = static_cast<float>(target[3]) / 255;
    for (std::size_t c = 0; c < 3; ++c) {
        std::uint8_t& out = target[places[c]];
        const float value = static_cast<float>(source[places[c]]) * (1 - targetAlpha) +
                            static_cast<float>(out) * (1 - sourceAlpha) +
                            mix[c] * sourceAlpha * targetAlpha * 255;
        out = static_cast<std::uint8_t>(std::clamp(value, 0.0F, 255.0F) + 0.5F);
    }
    const float alpha = sourceAlpha + targetAlpha - sourceAlpha * targetAlpha;
    target[3] = static_cast<std::uint8_t>(alpha * 255 + 0.5F);
    for (int c = 0; c < 3; ++c)
        target[c] = std::min(target[c], target[3]);
}

} // namespace

bool isBlendedByUs(Operation operation) noexcept {
    return operation == Operation::plusDarker || operation >= Operation::hue;
}

void blendPixels(Operation operation, ChannelOrder order, const std::uint8_t* source,
                 std::uint8_t* target, std::int64_t count) noexcept {
    const int red = order == ChannelOrder::swapped ? 0 : 2;
    for (std::int64_t x = 0; x < count; ++x, source += 4, target += 4)
        if (source[3] != 0 && operation == Operation::plusDarker)
            addDarkness(source, target);
        else if (source[3] != 0)
            mixColors(operation, red, source, target);
}

} // namespace zorvan
