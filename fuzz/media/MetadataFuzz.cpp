#include <zorvan/platform/imageio/ImageReader.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/HeifBoxes.h>
#include <zorvan/platform/imageio/internal/Iptc.h>
#include <zorvan/platform/imageio/internal/JpegHeader.h>
#include <zorvan/platform/imageio/internal/PngHeader.h>

#include <cstddef>
#include <cstdint>

using namespace zorvan;
using namespace zorvan::imageio;

namespace {

template <class Read>
void attempt(const Data& bytes, const Read& read) {
    const auto source = sourceOver(bytes);
    try {
        read(*source);
    } catch (const Failure&) {
        // what a broken file comes down to
    }
}

} // namespace

// The first byte chooses the reader, the others are its input.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    if (size == 0)
        return 0;
    const auto* first = reinterpret_cast<const std::byte*>(input);
    const Data bytes(first + 1, first + size);
    PropertyList::Dictionary properties;
    switch (input[0] % 6) {
    case 0:
        exifOrientation(bytes);
        addExifProperties(bytes, properties);
        exifThumbnail(bytes);
        break;
    case 1:
        addPhotoshopProperties(bytes, properties);
        break;
    case 2:
        addIptcProperties(bytes, properties);
        break;
    case 3:
        attempt(bytes, [](ByteSource& source) { readJpegHeader(source); });
        break;
    case 4:
        attempt(bytes, [](ByteSource& source) { readPngHeader(source); });
        break;
    default:
        attempt(bytes, [](ByteSource& source) { readHeifBoxes(source); });
    }
    return 0;
}
