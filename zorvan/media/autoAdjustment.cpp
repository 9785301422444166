#include <zorvan/media/CIContext.h>
#include <zorvan/media/CIFilter.h>
#include <zorvan/media/CIImage.h>
#include <zorvan/platform/foundation/internal/valueUnder.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zorvan {

namespace {

/// The side of the small form that is looked at.
constexpr double sampleSide = 256;

struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;

    double luminance() const noexcept { return 0.2126 * red + 0.7152 * green + 0.0722 * blue; }
    double most() const noexcept { return std::max({red, green, blue}); }
    double least() const noexcept { return std::min({red, green, blue}); }
    double saturation() const noexcept { return most() > 0 ? (most() - least()) / most() : 0; }
};

/// The colours of the opaque pixels.
std::vector<Color> sampleOf(const CIImage& image) {
    const CIImage::Pointer small = image.aspectFit(CGRect(0, 0, sampleSide, sampleSide));
    const CGImage::Pointer drawn = CIContext().createCGImage(small);
    std::vector<Color> colors;
    if (!drawn)
        return colors;
    for (std::int64_t i = 0; i < drawn->width() * drawn->height(); ++i) {
        const std::uint8_t* const pixel = drawn->uint8Data() + i * 4;
        if (pixel[3] == 255)
            colors.push_back({pixel[0] / 255.0, pixel[1] / 255.0, pixel[2] / 255.0});
    }
    return colors;
}

/// Skin of every shade is between red and orange; it differs in brightness and saturation.
bool hasHueOfSkin(const Color& c) noexcept {
    return c.red > c.green && c.green >= c.blue && c.saturation() > 0.15 &&
           (c.green - c.blue) / (c.red - c.blue) < 0.85;
}

bool isNearlyGrey(const Color& c, double darkest) noexcept {
    constexpr double brightest = 0.97; // above, colours may have been cut off
    return c.most() > darkest && c.most() < brightest && c.saturation() < 0.4 && !hasHueOfSkin(c);
}

CIFilter::Pointer colorBalance(std::vector<Color>& colors) {
    double brightest = 0;
    for (const Color& color : colors)
        brightest = std::max(brightest, color.most());
    Color sum;
    std::size_t count = 0;
    for (const Color& color : colors)
        if (isNearlyGrey(color, brightest * 0.1)) {
            sum = {sum.red + color.red, sum.green + color.green, sum.blue + color.blue};
            ++count;
        }
    constexpr double strength = 0.8, most = 4.0 / 3;
    if (count < colors.size() / 50 || sum.least() <= 0)
        return nullptr;
    const double grey = sum.luminance();
    const auto gain = [&](double component) {
        return std::clamp(std::pow(grey / component, strength), 1 / most, most);
    };
    const Color gains{gain(sum.red), gain(sum.green), gain(sum.blue)};
    if (gains.most() - gains.least() < 0.01)
        return nullptr;
    for (Color& color : colors)
        color = {color.red * gains.red, color.green * gains.green, color.blue * gains.blue};
    const CIFilter::Pointer filter = CIFilter::create("CIColorMatrix");
    filter->setValue(CIVector{gains.red, 0, 0, 0}, "inputRVector");
    filter->setValue(CIVector{0, gains.green, 0, 0}, "inputGVector");
    filter->setValue(CIVector{0, 0, gains.blue, 0}, "inputBVector");
    return filter;
}

/// The value that `share` of the sorted ones stay below.
double quantile(const std::vector<double>& sorted, double share) noexcept {
    return sorted[static_cast<std::size_t>(static_cast<double>(sorted.size() - 1) * share)];
}

/// The same stretch for all three components, so colours keep their hue as far as they can.
CIFilter::Pointer toneCurve(const std::vector<Color>& colors) {
    std::vector<double> levels;
    levels.reserve(colors.size());
    for (const Color& color : colors)
        levels.push_back(std::min(color.luminance(), 1.0));
    std::sort(levels.begin(), levels.end());
    const double low = quantile(levels, 0.005);
    const double high = quantile(levels, 0.995);
    constexpr double flat = 0.03, mostGain = 8;
    if (high - low < flat)
        return nullptr;
    const double width = std::min(1 - low, std::max(high - low, 1 / mostGain));
    const double middle = std::clamp((quantile(levels, 0.5) - low) / width, 0.02, 0.98);
    // Raised towards the middle grey, and only so far that a dark scene stays one.
    constexpr double wanted = 0.42;
    const double gamma =
        middle < wanted ? std::clamp(std::log(wanted) / std::log(middle), 0.6, 1.0) : 1;
    if (low < 0.01 && low + width > 0.98 && gamma > 0.97)
        return nullptr;
    const CIFilter::Pointer filter = CIFilter::create("CIToneCurve");
    constexpr std::array<double, 5> positions{0, 0.125, 0.35, 0.65, 1};
    for (std::size_t i = 0; i < positions.size(); ++i)
        filter->setValue(CIVector{low + width * positions[i], std::pow(positions[i], gamma), 0, 0},
                         "inputPoint" + std::to_string(i));
    return filter;
}

} // namespace

std::vector<CIFilter::Pointer>
CIImage::autoAdjustmentFilters(const PropertyList::Dictionary& options) const {
    std::vector<CIFilter::Pointer> filters;
    const auto* wanted = internal::valueUnder<NSNumber>(options, kCIImageAutoAdjustEnhance);
    if (wanted && !wanted->boolValue())
        return filters;
    std::vector<Color> colors = sampleOf(*this);
    if (colors.empty())
        return filters;
    for (const CIFilter::Pointer& filter : {colorBalance(colors), toneCurve(colors)})
        if (filter)
            filters.push_back(filter);
    return filters;
}

} // namespace zorvan
