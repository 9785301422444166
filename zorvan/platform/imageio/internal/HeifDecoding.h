#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>

#include <optional>

namespace zorvan::imageio {

/// How a picture is coded.
struct Coding {
    PixelSize size;
    /// As HeifPicture::chroma.
    std::optional<int> chroma;
};

/// Puts a part of the only picture of a HEIF file into the sink. Throws Failure.
void decodePart(const Data& file, const Coding& coding, const PixelRect& part, PictureSink& sink);

} // namespace zorvan::imageio
