#include <zorvan/platform/graphics/internal/Resampler.h>

#include <zorvan/platform/graphics/internal/PixelKernels.h>
#include <zorvan/platform/graphics/parallelRows.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace zorvan {
namespace {

using Pixel = float __attribute__((vector_size(16)));
using IntegerPixel = std::int32_t __attribute__((vector_size(16)));
using BytePixel = std::uint8_t __attribute__((vector_size(4)));

Pixel loadPixel(const float* sums, std::int64_t pixel) noexcept {
    Pixel result;
    std::memcpy(&result, sums + pixel * 4, sizeof result);
    return result;
}

/// Rounds, and keeps colour within 0 to alpha, which interpolation may overshoot.
template <int alphaIndex>
void storePixel(std::uint8_t* to, Pixel value) noexcept {
    const Pixel zero{};
    const float alpha = std::clamp(value[alphaIndex], 0.0F, 255.0F);
    const Pixel limit = {alpha, alpha, alpha, alpha};
    value = value < zero ? zero : value;
    value = value > limit ? limit : value;
    const BytePixel bytes =
        __builtin_convertvector(__builtin_convertvector(value + 0.5F, IntegerPixel), BytePixel);
    std::memcpy(to, &bytes, sizeof bytes);
}

template <int alphaIndex>
void mixColumns(const float* sums, std::int64_t firstColumn, const AxisWeights& columns,
                std::uint8_t* to, std::int64_t count) noexcept {
    for (std::int64_t x = 0; x < count; ++x) {
        const AxisWeights::Taps taps = columns.taps(x);
        const std::int64_t first = taps.first - firstColumn;
        Pixel sum{};
        for (std::int64_t k = 0; k < taps.count; ++k)
            sum += loadPixel(sums, first + k) * taps.weights[k];
        storePixel<alphaIndex>(to + x * 4, sum);
    }
}

/// The weights of the four pixels around a position `t` of the way from the second to the third.
std::array<double, 4> catmullRom(double t) noexcept {
    const double t2 = t * t;
    const double t3 = t2 * t;
    return {(-t3 + 2 * t2 - t) / 2, (3 * t3 - 5 * t2 + 2) / 2, (-3 * t3 + 4 * t2 + t) / 2,
            (t3 - t2) / 2};
}

} // namespace

AxisWeights::AxisWeights(const AxisPlacement& placement, std::int64_t first, std::int64_t count) {
    const double scale = static_cast<double>(placement.sourceLength) / placement.length;
    const double end = placement.origin + placement.length;
    ranges_.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = first; i < first + count; ++i) {
        const double pixel = static_cast<double>(i);
        const double from =
            (placement.isMirrored ? end - (pixel + 1) : pixel - placement.origin) * scale;
        if (scale > 1)
            addAverage(from, from + scale, placement.sourceLength);
        else
            addInterpolation(from + scale / 2, placement.sourceLength);
    }
}

void AxisWeights::addAverage(double from, double to, std::int64_t sourceLength) {
    const double length = static_cast<double>(sourceLength);
    from = std::clamp(from, 0.0, length);
    to = std::clamp(to, from, length);
    const auto first = std::min(static_cast<std::int64_t>(from), sourceLength - 1);
    const auto last = std::max(static_cast<std::int64_t>(std::ceil(to)), first + 1);
    ranges_.push_back({first, last - first, weights_.size()});
    if (last == first + 1)
        return weights_.push_back(1);
    for (std::int64_t i = first; i < last; ++i) {
        const double position = static_cast<double>(i);
        const double part = std::min(to, position + 1) - std::max(from, position);
        weights_.push_back(static_cast<float>(part / (to - from)));
    }
}

void AxisWeights::addInterpolation(double position, std::int64_t sourceLength) {
    const double centred = std::clamp(position - 0.5, 0.0, static_cast<double>(sourceLength - 1));
    const auto middle = static_cast<std::int64_t>(centred);
    const std::array<double, 4> weights = catmullRom(centred - static_cast<double>(middle));
    const std::int64_t first = std::max<std::int64_t>(middle - 1, 0);
    const std::int64_t last = std::min(middle + 3, sourceLength);
    ranges_.push_back({first, last - first, weights_.size()});
    weights_.resize(weights_.size() + static_cast<std::size_t>(last - first));
    for (std::int64_t k = 0; k < 4; ++k) {
        // Beyond the edge the picture goes on as it is there.
        const std::int64_t source = std::clamp(middle - 1 + k, first, last - 1);
        weights_[ranges_.back().offset + static_cast<std::size_t>(source - first)] +=
            static_cast<float>(weights[static_cast<std::size_t>(k)]);
    }
}

void resample(ConstPixelView source, const AxisWeights& columns, const AxisWeights& rows,
              PixelView target, BitmapLayout layout) {
    const AxisWeights::Taps a = columns.taps(0);
    const AxisWeights::Taps b = columns.taps(target.width - 1);
    const std::int64_t firstColumn = std::min(a.first, b.first);
    const std::int64_t columnCount = std::max(a.first + a.count, b.first + b.count) - firstColumn;
    const auto mix = layout == BitmapLayout::rgba ? mixColumns<3> : mixColumns<0>;
    // A row of the result costs as much as the source rows it is mixed from.
    const std::int64_t cost = std::max(target.width, columnCount * rows.taps(0).count);
    parallelRows(target.height, rowsPerTask(cost), [&](std::int64_t first, std::int64_t last) {
        std::vector<float> sums(static_cast<std::size_t>(columnCount) * 4);
        for (std::int64_t y = first; y < last; ++y) {
            const AxisWeights::Taps taps = rows.taps(y);
            pixelKernels().weighRows(sums.data(), source.row(taps.first) + firstColumn * 4,
                                     source.bytesPerRow, taps.weights, taps.count, columnCount * 4);
            mix(sums.data(), firstColumn, columns, target.row(y), target.width);
        }
    });
}

} // namespace zorvan
