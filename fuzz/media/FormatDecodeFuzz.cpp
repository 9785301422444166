// One program for each format, which ZORVAN_FUZZ_FORMAT names: all that a reader gives of the
// bytes. A picture never comes out larger than it was asked for. Bytes of another format are left
// to that format's program.

#include <fuzz/Fuzzing.h>
#include <zorvan/platform/imageio/ImageReader.h>

using namespace zorvan;
using namespace zorvan::imageio;

namespace {

constexpr std::int64_t thumbnailSize = 16;
/// Larger pictures decode well enough, but so slowly here that a run would see few of them.
constexpr double largestArea = 1 << 18;

double side(const PropertyList::Dictionary& properties, const char* key) {
    return properties.at(key).as<NSNumber>()->doubleValue();
}

void decodeOne(ImageReader& reader, std::int64_t index) {
    const auto properties = reader.properties(index);
    if (!properties)
        return;
    const double area = side(*properties, "PixelWidth") * side(*properties, "PixelHeight");
    if (area > largestArea && area < 4e8)
        return;
    reader.decode(index, {});
    const auto small = reader.decode(index, {.maximumPixelSize = thumbnailSize});
    require(!small || std::max(small->width(), small->height()) <= thumbnailSize);
    reader.embeddedThumbnail(index);
}

} // namespace

void tryOut(std::span<const std::uint8_t> input) {
    const auto bytes = std::as_bytes(input);
    const auto reader = ImageReader::open(Data(bytes.begin(), bytes.end()));
    if (reader->format() != FileFormat::ZORVAN_FUZZ_FORMAT)
        return;
    for (std::int64_t index = 0; index < std::min<std::int64_t>(reader->count(), 3); ++index)
        decodeOne(*reader, index);
}
