#pragma once

#include "Support.h"

#include <zorvan/platform/imageio/internal/PictureSink.h>

#include <string>
#include <vector>

namespace zorvan::imageio {

// Files of the formats that are read but not written, made by their own
// libraries or by hand.

inline constexpr std::int64_t quartersWidth = 24, quartersHeight = 16;

/// Four flat quarters: red grows from left to right, green from top to bottom.
/// With alpha, the right half is a quarter opaque.
Bitmap quarters(bool hasAlpha = false);

/// What others have made of the quarters with alpha. "turned.jxl" is lossless and to be turned by
/// 6, while its Exif box says 3.
Data sample(const std::string& name);

Data webpOf(const Bitmap& bitmap, bool isLossless = true);
/// An animation whose first picture stands at (2, 4) on a canvas of 40 x 30.
Data animatedWebp(const Bitmap& bitmap);
/// The same with that chunk at its end.
Data withWebpExif(Data webp, PixelSize size, const Data& exif);

struct GifForm {
    bool isInterlaced = false;
    int left = 0;
    int top = 0;
    /// 0 by 0: that of the picture.
    PixelSize canvas = {};
    /// A picture of other colours that follows.
    bool isAnimated = false;
};
/// Colours that are not opaque become the transparent one.
Data gifOf(const Bitmap& bitmap, const GifForm& form = {});

struct BmpForm {
    int bits = 24;
    std::uint32_t compression = 0;
    std::uint32_t headSize = 40;
    bool isTopFirst = false;
    /// Red, green, blue and alpha, of pixels with masks.
    std::array<std::uint32_t, 4> masks = {};
};
Data bmpOf(const Bitmap& bitmap, const BmpForm& form = {});

struct OtherFormat {
    FileFormat format;
    Data bytes;
    bool hasAlpha = false;
    /// How far components may be off on average.
    double tolerance = 0;
};
/// The quarters in every format.
std::vector<OtherFormat> otherFormats();

} // namespace zorvan::imageio
