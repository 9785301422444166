// The first byte chooses the reader, the others are its input.

#include <fuzz/Fuzzing.h>
#include <zorvan/platform/imageio/ImageReader.h>
#include <zorvan/platform/imageio/internal/ByteSource.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/HeifTiles.h>
#include <zorvan/platform/imageio/internal/Iptc.h>
#include <zorvan/platform/imageio/internal/JpegHeader.h>
#include <zorvan/platform/imageio/internal/PngHeader.h>

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

void readHeif(ByteSource& source) {
    const HeifMeta meta(source);
    for (const HeifPicture& picture : heifFileOf(meta, source.size()).pictures)
        HeifTiles(meta, source, picture.item).file(0, 0);
}

} // namespace

void tryOut(std::span<const std::uint8_t> input) {
    if (input.empty())
        return;
    const auto rest = std::as_bytes(input.subspan(1));
    const Data bytes(rest.begin(), rest.end());
    PropertyList::Dictionary properties;
    switch (input[0] % 5) {
    case 0:
        exifOrientation(bytes);
        addExifProperties(bytes, properties);
        exifThumbnail(bytes);
        break;
    case 1:
        addPhotoshopProperties(bytes, properties);
        addIptcProperties(bytes, properties);
        break;
    case 2:
        attempt(bytes, [](ByteSource& source) { readJpegHeader(source); });
        break;
    case 3:
        attempt(bytes, [](ByteSource& source) { readPngHeader(source); });
        break;
    default:
        attempt(bytes, readHeif);
    }
}
