#pragma once

#include <zorvan/platform/imageio/internal/PictureSink.h>
#include <zorvan/platform/imageio/internal/TiffFile.h>

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace zorvan::imageio {

/// How the samples of a TIFF page are laid out.
struct TiffLayout {
    PixelSize size;
    int bits = 1;
    int sampleCount = 1;
    int photometric = 0;
    int sampleFormat = SAMPLEFORMAT_UINT;
    int compression = COMPRESSION_NONE;
    bool planar = false;
    bool tiled = false;
    enum class Alpha { none, associated, unassociated };
    Alpha alpha = Alpha::none;
    /// Which sample is the alpha.
    int alphaSample = 0;

    int colourCount() const noexcept;
    bool isSigned() const noexcept { return sampleFormat == SAMPLEFORMAT_INT; }
    /// Whether TiffSamples can turn its rows into pixels.
    bool isPlain() const noexcept;
};

TiffLayout layoutOf(const TiffFile& file);

/// Turns rows of samples into RGBA, premultiplied.
class TiffSamples {
public:
    TiffSamples(const TiffFile& file, const TiffLayout& layout);

    /// One row; `planes` has one pointer for each sample when the layout is planar, else a single
    /// one.
    void convert(std::span<const std::uint8_t* const> planes, std::uint8_t* rgba);

private:
    void unpack(std::span<const std::uint8_t* const> planes, int sample,
                std::vector<std::uint8_t>& out) const;
    void combine(std::uint8_t* rgba) const;
    void applyAlpha(std::uint8_t* rgba) const;
    void loadPalette(const TiffFile& file);
    bool convertQuickly(const std::uint8_t* row, std::uint8_t* rgba) const;

    const TiffLayout layout_;
    std::vector<std::array<std::uint8_t, 3>> palette_ = {};
    std::array<std::vector<std::uint8_t>, 4> colours_ = {};
    std::vector<std::uint8_t> alpha_ = {};
};

} // namespace zorvan::imageio
