#pragma once

#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/PictureSink.h>

#include <optional>

namespace zorvan::imageio {

/// The size of the pictures that the sequence parameters in the content of an "hvcC" box describe,
/// as a decoder gives them out; absent when there are none to be read.
std::optional<PixelSize> hevcPictureSize(Bytes configuration);

} // namespace zorvan::imageio
