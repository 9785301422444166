#include <zorvan/platform/imageio/internal/TiffSamples.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/PixelRows.h>

#include <algorithm>
#include <cstring>

namespace zorvan::imageio {
namespace {

template <class Value>
Value valueAt(const std::uint8_t* row, std::int64_t index) noexcept {
    Value value;
    std::memcpy(&value, row + index * static_cast<std::int64_t>(sizeof value), sizeof value);
    return value;
}

std::uint8_t fromReal(double value) noexcept {
    // Written so that NaN becomes 0.
    return value > 0 ? static_cast<std::uint8_t>(std::min(value, 1.0) * 255 + 0.5)
                     : std::uint8_t{0};
}

double halfPrecision(std::uint16_t bits) noexcept {
    const int exponent = bits >> 10 & 31;
    const double fraction = bits & 1023;
    const double sign = (bits & 0x8000) != 0 ? -1 : 1;
    if (exponent == 31)
        return fraction == 0 ? sign : 0;
    if (exponent == 0)
        return sign * fraction / (1 << 24);
    const double scale = exponent >= 15 ? 1 << (exponent - 15) : 1.0 / (1 << (15 - exponent));
    return sign * (1 + fraction / 1024) * scale;
}

/// A sample of fewer than 16 bits, which may begin within a byte.
unsigned packedSample(const std::uint8_t* row, std::int64_t index, int bits) noexcept {
    unsigned value = 0;
    int missing = bits;
    for (std::int64_t bit = index * bits; missing > 0;) {
        const int there = static_cast<int>(8 - bit % 8);
        const int taken = std::min(there, missing);
        const unsigned part = static_cast<unsigned>(row[bit / 8]) >> (there - taken);
        value = value << taken | (part & ((1U << taken) - 1));
        missing -= taken;
        bit += taken;
    }
    return value;
}

std::uint8_t from16(unsigned value) noexcept {
    return static_cast<std::uint8_t>((value * 255U + 32767U) / 65535U);
}

/// Calls `out(i, value)` with the sample of each pixel, scaled to 8 bits.
template <class Value, class Scale>
void spread(const std::uint8_t* row, std::int64_t first, std::int64_t step,
            std::vector<std::uint8_t>& out, Scale scale) {
    std::int64_t index = first;
    for (std::uint8_t& sample : out) {
        sample = scale(valueAt<Value>(row, index));
        index += step;
    }
}

TiffLayout::Alpha alphaKind(std::uint16_t extraSample) {
    return extraSample == EXTRASAMPLE_ASSOCALPHA   ? TiffLayout::Alpha::associated
           : extraSample == EXTRASAMPLE_UNASSALPHA ? TiffLayout::Alpha::unassociated
                                                   : TiffLayout::Alpha::none;
}

/// An extra sample that is not declared to be alpha may be anything, and is left aside.
void findAlpha(const TiffFile& file, TiffLayout& layout) {
    std::uint16_t count = 0;
    std::uint16_t* kinds = nullptr;
    if (TIFFGetFieldDefaulted(file.get(), TIFFTAG_EXTRASAMPLES, &count, &kinds) != 1 || !kinds)
        return;
    for (int i = 0; i < count && layout.alpha == TiffLayout::Alpha::none; ++i) {
        layout.alpha = alphaKind(kinds[i]);
        layout.alphaSample = layout.sampleCount - count + i;
    }
    if (layout.alphaSample < layout.colourCount() || layout.alphaSample >= layout.sampleCount)
        layout.alpha = TiffLayout::Alpha::none;
}

} // namespace

int TiffLayout::colourCount() const noexcept {
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_PALETTE:
        return 1;
    case PHOTOMETRIC_SEPARATED:
        return 4;
    default:
        return 3;
    }
}

bool TiffLayout::isPlain() const noexcept {
    const bool integers =
        sampleFormat == SAMPLEFORMAT_UINT || sampleFormat == SAMPLEFORMAT_VOID || isSigned();
    const bool knownBits =
        integers ? (bits >= 1 && bits <= 16) || bits == 32
                 : sampleFormat == SAMPLEFORMAT_IEEEFP && (bits == 16 || bits == 32 || bits == 64);
    const bool knownColours =
        photometric == PHOTOMETRIC_MINISWHITE || photometric == PHOTOMETRIC_MINISBLACK ||
        photometric == PHOTOMETRIC_RGB || photometric == PHOTOMETRIC_SEPARATED ||
        (photometric == PHOTOMETRIC_PALETTE && integers && !isSigned() && bits <= 8);
    constexpr int maximumSamples = 32;
    return knownBits && knownColours && sampleCount >= colourCount() &&
           sampleCount <= maximumSamples && compression != COMPRESSION_OJPEG;
}

TiffLayout layoutOf(const TiffFile& file) {
    TIFF* tiff = file.get();
    TiffLayout layout;
    layout.size = {file.field<std::uint32_t>(TIFFTAG_IMAGEWIDTH).value_or(0),
                   file.field<std::uint32_t>(TIFFTAG_IMAGELENGTH).value_or(0)};
    layout.bits = file.fieldOrDefault<std::uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
    layout.sampleCount = file.fieldOrDefault<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
    layout.sampleFormat =
        file.fieldOrDefault<std::uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    layout.compression = file.fieldOrDefault<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    layout.planar = file.fieldOrDefault<std::uint16_t>(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) ==
                        PLANARCONFIG_SEPARATE &&
                    layout.sampleCount > 1;
    layout.tiled = TIFFIsTiled(tiff) != 0;
    const int guessed = layout.sampleCount >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    layout.photometric = file.field<std::uint16_t>(TIFFTAG_PHOTOMETRIC)
                             .value_or(static_cast<std::uint16_t>(guessed));
    // The codec turns these into RGB itself.
    if (layout.photometric == PHOTOMETRIC_YCBCR && layout.compression == COMPRESSION_JPEG &&
        !layout.planar && TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB) == 1)
        layout.photometric = PHOTOMETRIC_RGB;
    findAlpha(file, layout);
    return layout;
}

TiffSamples::TiffSamples(const TiffFile& file, const TiffLayout& layout) : layout_(layout) {
    const auto width = static_cast<std::size_t>(layout.size.width);
    for (int i = 0; i < layout.colourCount(); ++i)
        colours_[static_cast<std::size_t>(i)].resize(width);
    if (layout.alpha != TiffLayout::Alpha::none)
        alpha_.resize(width);
    if (layout.photometric == PHOTOMETRIC_PALETTE)
        loadPalette(file);
}

void TiffSamples::loadPalette(const TiffFile& file) {
    std::uint16_t* red = nullptr;
    std::uint16_t* green = nullptr;
    std::uint16_t* blue = nullptr;
    if (TIFFGetField(file.get(), TIFFTAG_COLORMAP, &red, &green, &blue) != 1)
        throw Failure{reason::damaged};
    palette_.resize(std::size_t{1} << layout_.bits);
    bool wide = false;
    for (std::size_t i = 0; i < palette_.size(); ++i)
        wide = wide || red[i] > 255 || green[i] > 255 || blue[i] > 255;
    // Some old programs wrote 8-bit values.
    const auto component = [&](std::uint16_t value) {
        return wide ? from16(value) : static_cast<std::uint8_t>(value);
    };
    for (std::size_t i = 0; i < palette_.size(); ++i)
        palette_[i] = {component(red[i]), component(green[i]), component(blue[i])};
}

void TiffSamples::convert(std::span<const std::uint8_t* const> planes, std::uint8_t* rgba) {
    if (!layout_.planar && convertQuickly(planes[0], rgba))
        return;
    for (int i = 0; i < layout_.colourCount(); ++i)
        unpack(planes, i, colours_[static_cast<std::size_t>(i)]);
    combine(rgba);
    if (layout_.alpha != TiffLayout::Alpha::none) {
        unpack(planes, layout_.alphaSample, alpha_);
        applyAlpha(rgba);
    }
}

bool TiffSamples::convertQuickly(const std::uint8_t* row, std::uint8_t* rgba) const {
    if (layout_.bits != 8 || layout_.photometric != PHOTOMETRIC_RGB || layout_.isSigned())
        return false;
    const std::int64_t width = layout_.size.width;
    if (layout_.sampleCount == 3) {
        for (std::int64_t x = 0; x < width; ++x, row += 3, rgba += 4) {
            rgba[0] = row[0];
            rgba[1] = row[1];
            rgba[2] = row[2];
            rgba[3] = 255;
        }
        return true;
    }
    if (layout_.sampleCount == 4 && layout_.alpha == TiffLayout::Alpha::unassociated) {
        std::memcpy(rgba, row, static_cast<std::size_t>(width) * 4);
        premultiply(rgba, width);
        return true;
    }
    return false;
}

void TiffSamples::unpack(std::span<const std::uint8_t* const> planes, int sample,
                         std::vector<std::uint8_t>& out) const {
    const std::uint8_t* row = layout_.planar ? planes[static_cast<std::size_t>(sample)] : planes[0];
    const std::int64_t first = layout_.planar ? 0 : sample;
    const std::int64_t step = layout_.planar ? 1 : layout_.sampleCount;
    const bool real = layout_.sampleFormat == SAMPLEFORMAT_IEEEFP;
    // Signed samples go from the least to the greatest as unsigned ones do.
    const std::uint32_t flipped = layout_.isSigned() ? 1U << (layout_.bits - 1) : 0;
    if (layout_.bits == 8)
        return spread<std::uint8_t>(row, first, step, out, [&](std::uint8_t v) {
            return static_cast<std::uint8_t>(v ^ flipped);
        });
    if (layout_.bits == 16 && !real)
        return spread<std::uint16_t>(row, first, step, out,
                                     [&](std::uint16_t v) { return from16(v ^ flipped); });
    if (layout_.bits == 16)
        return spread<std::uint16_t>(row, first, step, out,
                                     [](std::uint16_t v) { return fromReal(halfPrecision(v)); });
    if (layout_.bits == 32 && !real)
        return spread<std::uint32_t>(row, first, step, out,
                                     [&](std::uint32_t v) { return from16((v ^ flipped) >> 16); });
    if (layout_.bits == 32)
        return spread<float>(row, first, step, out, [](float v) { return fromReal(v); });
    if (layout_.bits == 64)
        return spread<double>(row, first, step, out, fromReal);
    const bool isIndex = layout_.photometric == PHOTOMETRIC_PALETTE && sample == 0;
    const unsigned largest = (1U << layout_.bits) - 1;
    std::int64_t index = first;
    for (std::uint8_t& value : out) {
        const unsigned stored = packedSample(row, index, layout_.bits) ^ flipped;
        value =
            static_cast<std::uint8_t>(isIndex ? stored : (stored * 255 + largest / 2) / largest);
        index += step;
    }
}

void TiffSamples::combine(std::uint8_t* rgba) const {
    const auto width = static_cast<std::size_t>(layout_.size.width);
    const std::uint8_t inversion = layout_.photometric == PHOTOMETRIC_MINISWHITE ? 255 : 0;
    for (std::size_t x = 0; x < width; ++x, rgba += 4) {
        const std::uint8_t first = colours_[0][x];
        rgba[3] = 255;
        switch (layout_.photometric) {
        case PHOTOMETRIC_RGB:
            rgba[0] = first;
            rgba[1] = colours_[1][x];
            rgba[2] = colours_[2][x];
            break;
        case PHOTOMETRIC_PALETTE:
            std::copy(palette_[first].begin(), palette_[first].end(), rgba);
            break;
        case PHOTOMETRIC_SEPARATED: {
            const std::array<std::uint8_t, 4> inks = {first, colours_[1][x], colours_[2][x],
                                                      colours_[3][x]};
            inkToRgba(inks.data(), rgba, 1);
            break;
        }
        default:
            std::fill(rgba, rgba + 3, static_cast<std::uint8_t>(first ^ inversion));
        }
    }
}

void TiffSamples::applyAlpha(std::uint8_t* rgba) const {
    const std::int64_t width = layout_.size.width;
    for (std::int64_t x = 0; x < width; ++x)
        rgba[x * 4 + 3] = alpha_[static_cast<std::size_t>(x)];
    finishAlpha(rgba, width, layout_.alpha == TiffLayout::Alpha::associated);
}

} // namespace zorvan::imageio
