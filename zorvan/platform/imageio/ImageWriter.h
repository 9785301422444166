#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/graphics/Bitmap.h>
#include <zorvan/platform/imageio/ImageReader.h>

#include <optional>
#include <span>
#include <string>

namespace zorvan::imageio {

/// One picture to write, and what to say about it.
struct Frame {
    const Bitmap* bitmap = nullptr; ///< Must not be null.
    /// 0 to 1, for the lossy formats, held between them; absent, and NaN, mean the codec's usual
    /// good quality.
    std::optional<double> quality = {};
    /// The TIFF compression code: 1 none, 5 LZW, 8 deflate. Absent means none.
    std::optional<int> tiffCompression = {};
    /// Properties to store in the file, by the same keys that `ImageReader::properties` gives:
    /// orientation, resolution, texts, and how, when and where the picture was taken. Values of
    /// another kind than their field has are left out.
    PropertyList::Dictionary properties = {};
};

/// Whether pictures can be written in a format: PNG, JPEG, TIFF, and HEIC where libheif has an
/// encoder.
bool canEncode(FileFormat format);

/// The bytes of a picture file. Absent when the codec is missing or refuses, or when a format that
/// holds one picture is given another number of them.
std::optional<Data> encode(FileFormat format, std::span<const Frame> frames);

} // namespace zorvan::imageio
