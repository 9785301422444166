#include <zorvan/platform/imageio/internal/YCbCr.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace zorvan::imageio {
namespace {

constexpr int fractionBits = 15;

std::int32_t fixedPoint(double value) {
    return static_cast<std::int32_t>(std::lround(value * (1 << fractionBits)));
}

std::uint8_t toByte(std::int32_t value) noexcept {
    return static_cast<std::uint8_t>(std::clamp(value >> fractionBits, 0, 255));
}

template <class Sample>
std::int32_t sampleAt(const std::uint8_t* row, std::int64_t index) noexcept {
    Sample sample;
    std::memcpy(&sample, row + index * static_cast<std::int64_t>(sizeof sample), sizeof sample);
    return sample;
}

} // namespace

YCbCrConverter::YCbCrConverter(const YCbCrMatrix& matrix, const Format& format)
    : format_(format), cb_(static_cast<std::size_t>(format.width)),
      cr_(static_cast<std::size_t>(format.width)) {
    const double unit = 1 << (format.bits - 8);
    const double largest = (1 << format.bits) - 1;
    // What the samples span, and 255 over that.
    const double ySpan = matrix.fullRange ? largest : 219 * unit;
    const double cSpan = matrix.fullRange ? largest : 224 * unit;
    const double black = matrix.fullRange ? 0 : 16 * unit;
    const double kg = 1 - matrix.kr - matrix.kb;
    const double c = 255 / cSpan;
    yFactor_ = fixedPoint(255 / ySpan);
    redFromCr_ = fixedPoint(2 * (1 - matrix.kr) * c);
    blueFromCb_ = fixedPoint(2 * (1 - matrix.kb) * c);
    greenFromCr_ = fixedPoint(-2 * (1 - matrix.kr) * matrix.kr / kg * c);
    greenFromCb_ = fixedPoint(-2 * (1 - matrix.kb) * matrix.kb / kg * c);
    offset_ = fixedPoint(0.5) - fixedPoint(black * 255 / ySpan);
    middle_ = 1 << (format.bits - 1);
}

void YCbCrConverter::convert(const YCbCrRow& row, std::uint8_t* rgba) {
    if (format_.bits > 8)
        convertSamples<std::uint16_t>(row, rgba);
    else
        convertSamples<std::uint8_t>(row, rgba);
    if (!row.alpha)
        return;
    const std::int32_t largest = (1 << format_.alphaBits) - 1;
    for (std::int64_t x = 0; x < format_.width; ++x) {
        const std::int32_t alpha = format_.alphaBits > 8 ? sampleAt<std::uint16_t>(row.alpha, x)
                                                         : sampleAt<std::uint8_t>(row.alpha, x);
        rgba[4 * x + 3] =
            static_cast<std::uint8_t>((std::min(alpha, largest) * 255 + largest / 2) / largest);
    }
}

template <class Sample>
void YCbCrConverter::spread(const std::uint8_t* samples, std::vector<std::int32_t>& out) const {
    std::int32_t* const to = out.data();
    const std::int64_t width = format_.width;
    if (!format_.halfWidth) {
        for (std::int64_t x = 0; x < width; ++x)
            to[x] = sampleAt<Sample>(samples, x) - middle_;
        return;
    }
    for (std::int64_t x = 0; x < width / 2; ++x)
        to[2 * x] = to[2 * x + 1] = sampleAt<Sample>(samples, x) - middle_;
    if (width % 2 != 0)
        to[width - 1] = sampleAt<Sample>(samples, width / 2) - middle_;
}

template <class Sample>
void YCbCrConverter::convertSamples(const YCbCrRow& row, std::uint8_t* rgba) {
    if (row.cb) {
        spread<Sample>(row.cb, cb_);
        spread<Sample>(row.cr, cr_);
    }
    const std::int32_t* const cb = cb_.data();
    const std::int32_t* const cr = cr_.data();
    const std::uint8_t* const luma = row.y;
    for (std::int64_t x = 0; x < format_.width; ++x) {
        const std::int32_t y = sampleAt<Sample>(luma, x) * yFactor_ + offset_;
        rgba[4 * x] = toByte(y + cr[x] * redFromCr_);
        rgba[4 * x + 1] = toByte(y + cb[x] * greenFromCb_ + cr[x] * greenFromCr_);
        rgba[4 * x + 2] = toByte(y + cb[x] * blueFromCb_);
        rgba[4 * x + 3] = 255;
    }
}

} // namespace zorvan::imageio
