#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>
#include <zorvan/platform/imageio/internal/Outline.h>

namespace zorvan::imageio {

/// What stands around the pixels of a PNG.
struct PngHeader {
    PixelSize size;
    int depth = 8;
    int colorType = 0;
    bool hasTransparentColour = false;
    std::optional<Outline::Resolution> dpi = {};
    /// How many bytes compressed texts have come to.
    std::uint64_t inflatedSize = 0;
    /// The Exif block; empty when there is none.
    Data exif = {};
    /// The entries of "{PNG}".
    PropertyList::Dictionary entries = {};
};

/// Walks over the chunks before the pixels. An Exif chunk may also follow them, and is then looked
/// for in the last bytes of the file. Throws Failure.
PngHeader readPngHeader(ByteSource& source);

} // namespace zorvan::imageio
