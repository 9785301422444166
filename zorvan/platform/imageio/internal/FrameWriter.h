#pragma once

#include <zorvan/platform/imageio/ImageWriter.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace zorvan::imageio {

// One function for each format; each throws, or gives nothing when the codec refuses.
std::optional<Data> encodeJpeg(const Frame& frame);
std::optional<Data> encodePng(const Frame& frame);

/// Whether every pixel is.
bool isOpaque(const Bitmap& bitmap) noexcept;

/// Rows of a bitmap of either layout as RGBA, premultiplied.
class RgbaRows {
public:
    explicit RgbaRows(const Bitmap& bitmap);
    /// Valid until the next call.
    const std::uint8_t* operator()(std::int64_t y) noexcept;

private:
    const Bitmap& bitmap_;
    std::vector<std::uint8_t> buffer_ = {};
};

/// Drops the fourth byte of every pixel.
void dropAlpha(const std::uint8_t* rgba, std::uint8_t* rgb, std::int64_t count) noexcept;

/// The quality as codecs take it, from 0 to 100; the usual one where none is asked for.
int percentOf(std::optional<double> quality, int usual);

} // namespace zorvan::imageio
