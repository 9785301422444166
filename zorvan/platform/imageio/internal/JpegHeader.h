#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>

#include <optional>

namespace zorvan::imageio {

/// What stands before the pixels of a JPEG.
struct JpegHeader {
    PixelSize size;
    int depth = 8;
    int componentCount = 3;
    bool progressive = false;
    struct Jfif {
        int major;
        int minor;
        int unit;
        int x;
        int y;
    };
    std::optional<Jfif> jfif = {};
    /// The Exif block, without its signature; empty when there is none.
    Data exif = {};
    /// The Photoshop resources, of all segments; empty when there are none.
    Data photoshop = {};
};

/// Walks over the segments up to the frame header and those before the first scan. Reads the
/// segments it wants and jumps over the others. Throws Failure.
JpegHeader readJpegHeader(ByteSource& source);

} // namespace zorvan::imageio
