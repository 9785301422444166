#pragma once

#include <zorvan/platform/imageio/ImageWriter.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <optional>
#include <span>

// What stands on the libraries of formats that many programs never meet, in libraries of our own,
// one for each. With its codecs libheif takes a program longer to load than all the others
// together.

namespace zorvan::imageio {

extern "C" MakeReader zorvanMakeHeifReader, zorvanMakeJpegXLReader, zorvanMakeTiffReader,
    zorvanMakeWebPReader, zorvanMakeGifReader;

extern "C" void zorvanHasHeicEncoder(bool& has);
extern "C" void zorvanEncodeHeic(const Frame& frame, std::optional<Data>& bytes);
extern "C" void zorvanEncodeTiff(std::span<const Frame> frames, std::optional<Data>& bytes);

} // namespace zorvan::imageio
