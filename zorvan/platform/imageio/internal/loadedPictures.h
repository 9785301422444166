#pragma once

#include <zorvan/platform/imageio/ImageReader.h>
#include <zorvan/platform/imageio/ImageWriter.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>

#include <memory>
#include <optional>
#include <span>

// What stands on the libraries of formats that many programs never meet, in libraries of our own,
// one for each. With its codecs libheif takes a program longer to load than all the others
// together.

namespace zorvan::imageio {

extern "C" void zorvanMakeHeifReader(std::unique_ptr<ByteSource> source, FileFormat format,
                                     std::unique_ptr<ImageReader>& reader);
extern "C" void zorvanHasHeicEncoder(bool& has);
extern "C" void zorvanEncodeHeic(const Frame& frame, std::optional<Data>& bytes);

extern "C" void zorvanMakeJpegXLReader(std::unique_ptr<ByteSource> source,
                                       std::unique_ptr<ImageReader>& reader);

extern "C" void zorvanMakeTiffReader(std::unique_ptr<ByteSource> source,
                                     std::unique_ptr<ImageReader>& reader);
extern "C" void zorvanEncodeTiff(std::span<const Frame> frames, std::optional<Data>& bytes);

extern "C" void zorvanMakeWebPReader(std::unique_ptr<ByteSource> source,
                                     std::unique_ptr<ImageReader>& reader);
extern "C" void zorvanMakeGifReader(std::unique_ptr<ByteSource> source,
                                    std::unique_ptr<ImageReader>& reader);

} // namespace zorvan::imageio
