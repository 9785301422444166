#pragma once

#include <zorvan/platform/imageio/ImageWriter.h>

#include <cstddef>
#include <cstdint>
#include <optional>

namespace zorvan::imageio {

// One function for each format; each throws, or gives nothing when the codec refuses. Pixels come
// to them as RGBA.
std::optional<Data> encodeJpeg(const Frame& frame);
std::optional<Data> encodePng(const Frame& frame);

/// Whether every pixel is.
bool isOpaque(const Bitmap& bitmap) noexcept;

/// Drops the fourth byte of every pixel.
void dropAlpha(const std::uint8_t* rgba, std::uint8_t* rgb, std::int64_t count) noexcept;

/// Appends what a codec has written; false when there is no memory for it.
bool append(Data& bytes, const void* written, std::size_t size) noexcept;

/// The quality as codecs take it, from 0 to 100; the usual one where none is asked for.
int percentOf(std::optional<double> quality, int usual);

} // namespace zorvan::imageio
