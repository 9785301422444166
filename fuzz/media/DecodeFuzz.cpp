#include "DecodeFuzz.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* bytes, std::size_t size,
                                        std::size_t maximumSize);

namespace zorvan::imageio {
namespace {

constexpr std::int64_t thumbnailSize = 16;
/// Larger pictures decode well enough, but so slowly here that a run would see few of them.
constexpr double largestArea = 1 << 18;

double side(const PropertyList::Dictionary& properties, const char* key) {
    const NSNumber* number = properties.at(key).as<NSNumber>();
    return number->doubleValue();
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
    if (small && std::max(small->width(), small->height()) > thumbnailSize)
        std::abort();
    reader.embeddedThumbnail(index);
}

Bitmap samplePicture(unsigned seed) {
    const std::int64_t width = 1 + seed % 40;
    std::optional<Bitmap> bitmap = Bitmap::make(width, 1 + seed / 40 % 30);
    const bool opaque = seed / 1200 % 2 == 0;
    for (std::int64_t i = 0; i < bitmap->byteCount(); ++i)
        bitmap->data()[i] =
            static_cast<std::uint8_t>(i % 4 == 3 ? (opaque ? 255 : 200) : i * 3 % 200);
    return std::move(*bitmap);
}

/// The endings of kept samples; those of other formats are written here.
const std::map<FileFormat, const char*> keptSamples{
    {FileFormat::webp, "webp"}, {FileFormat::avif, "avif"}, {FileFormat::gif, "gif"},
    {FileFormat::bmp, "bmp"},   {FileFormat::svg, "svg"},   {FileFormat::jpegXL, "jxl"}};

Data keptFile(const std::string& ending) {
    std::ifstream file(ZORVAN_FUZZ_SAMPLES "/quarters." + ending, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    const auto* first = reinterpret_cast<const std::byte*>(text.data());
    return Data(first, first + text.size());
}

Data sampleFile(FileFormat format, unsigned seed) {
    if (const auto kept = keptSamples.find(format); kept != keptSamples.end())
        return keptFile(kept->second);
    const Bitmap picture = samplePicture(seed);
    constexpr std::array<int, 4> compressions = {1, 5, 8, 32773};
    const Frame frame = {
        .bitmap = &picture,
        .tiffCompression = compressions[seed / 2400 % 4],
        .properties = {{"Orientation", static_cast<int>(1 + seed % 8)},
                       {"{TIFF}", PropertyList::Dictionary{{"DateTime", "2024:01:02 03:04:05"}}},
                       {"{Exif}", PropertyList::Dictionary{{"LensModel", "a lens"}}}}};
    return encode(format, {&frame, 1}).value_or(Data());
}

} // namespace

void decodeEverything(FileFormat format, std::span<const std::uint8_t> bytes) {
    const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
    const auto reader = ImageReader::open(Data(first, first + bytes.size()));
    if (reader->format() != format)
        return;
    for (std::int64_t index = 0; index < std::min<std::int64_t>(reader->count(), 3); ++index)
        decodeOne(*reader, index);
}

std::size_t mutated(FileFormat format, std::span<std::uint8_t> bytes, std::size_t maximumSize,
                    unsigned seed) {
    const auto* first = reinterpret_cast<const std::byte*>(bytes.data());
    const auto reader = ImageReader::open(Data(first, first + bytes.size()));
    const Data file = reader->format() == format ? Data() : sampleFile(format, seed);
    if (file.empty() || file.size() > maximumSize)
        return LLVMFuzzerMutate(bytes.data(), bytes.size(), maximumSize);
    std::memcpy(bytes.data(), file.data(), file.size());
    return file.size();
}

} // namespace zorvan::imageio
