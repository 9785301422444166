#pragma once

#include <tests/bytesOf.h>
#include <tests/platform/graphics/TestPictures.h>

#include <zorvan/platform/imageio/ImageReader.h>
#include <zorvan/platform/imageio/ImageWriter.h>
#include <zorvan/platform/imageio/internal/ByteOrder.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string_view>

namespace zorvan::imageio {

using Pixel = std::array<int, 4>;

/// That this build reads and writes.
inline constexpr std::array formats = {FileFormat::png, FileFormat::jpeg, FileFormat::tiff,
#ifdef ZORVAN_WITH_HEIC
                                       FileFormat::heic
#endif
};

/// A different colour in each corner, gradients between them. With alpha, it fades out to the
/// right.
Bitmap pattern(std::int64_t width, std::int64_t height, bool alpha = false);

/// Every component is within one of the pixel that `wanted` gives for its column and row.
void expectPixels(const Bitmap& bitmap,
                  const std::function<Pixel(std::int64_t x, std::int64_t y)>& wanted);

/// A kept file, whose name tells what is special about it.
Data sample(const std::string& name);

Data encoded(FileFormat format, const Bitmap& bitmap, PropertyList::Dictionary properties = {});

/// Decodes the first picture; a failure is reported and gives a single pixel.
Bitmap decoded(const Data& bytes, DecodeOptions options = {});
/// Why the first picture cannot be decoded; empty when it can.
std::string errorOf(const Data& bytes, DecodeOptions options = {});
/// The same with so much more address space, and none beyond it.
std::string errorWithin(std::uint64_t more, const Data& bytes);
/// Reads all there is, so many times and each time with other bytes changed.
void readDamaged(const Data& bytes, int rounds);

PropertyList::Dictionary propertiesOf(const Data& bytes);

/// The number under that key, in that section; -1 when there is none.
double number(const PropertyList::Dictionary& properties, std::string_view key);
double number(const PropertyList::Dictionary& properties, std::string_view section,
              std::string_view key);
std::string text(const PropertyList::Dictionary& properties, std::string_view section,
                 std::string_view key);

/// With a segment of that kind behind the first marker.
Data withSegment(Data jpeg, int marker, Bytes content);

/// Where a text stands in the bytes; it has to.
std::size_t positionOf(const Data& bytes, std::string_view text);

/// An exact area average in double precision, rounded.
Bitmap referenceDownscale(const Bitmap& source, std::int64_t width, std::int64_t height);

} // namespace zorvan::imageio
