#pragma once

#include <zorvan/platform/imageio/ImageReader.h>
#include <zorvan/platform/imageio/ImageWriter.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>

#include <memory>
#include <optional>

// What stands on libheif, in a library of its own: with its codecs that takes a program longer to
// load than all other picture formats together.

namespace zorvan::imageio {

extern "C" void zorvanMakeHeifReader(std::unique_ptr<ByteSource> source, FileFormat format,
                                     std::unique_ptr<ImageReader>& reader);
extern "C" void zorvanHasHeicEncoder(bool& has);
extern "C" void zorvanEncodeHeic(const Frame& frame, std::optional<Data>& bytes);

extern "C" void zorvanMakeJpegXLReader(std::unique_ptr<ByteSource> source,
                                       std::unique_ptr<ImageReader>& reader);

} // namespace zorvan::imageio
