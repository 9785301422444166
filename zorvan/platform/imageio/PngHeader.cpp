#include <zorvan/platform/imageio/internal/PngHeader.h>

#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include <zlib.h>

namespace zorvan::imageio {
namespace {

constexpr std::uint64_t signatureLength = 8;
constexpr std::uint64_t frameLength = 12; // length, name and check sum of a chunk
constexpr int maximumChunks = 10'000;

std::string_view textOf(Bytes bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

void readImageHeader(Bytes data, PngHeader& header) {
    if (data.size() < 13)
        throw Failure{reason::damaged};
    header.size = {big32(data, 0), big32(data, 4)};
    header.depth = std::to_integer<int>(data[8]);
    header.colorType = std::to_integer<int>(data[9]);
    header.interlaced = std::to_integer<int>(data[12]) == 1;
    header.entries.insert_or_assign("InterlaceType", std::to_integer<int>(data[12]));
}

void readPhysicalSize(Bytes data, PngHeader& header) {
    constexpr double metresPerInch = 0.0254;
    const double x = big32(data, 0);
    const double y = big32(data, 4);
    header.entries.insert_or_assign("XPixelsPerMeter", x);
    header.entries.insert_or_assign("YPixelsPerMeter", y);
    const bool inMetres = data.size() >= 9 && std::to_integer<int>(data[8]) == 1;
    if (inMetres && x > 0 && y > 0)
        header.dpi = Outline::Resolution{x * metresPerInch, y * metresPerInch};
}

/// The texts whose keywords the format itself defines.
void addText(std::string_view keyword, std::string_view value, PngHeader& header) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 9> keys = {{
        {"Title", "Title"},
        {"Author", "Author"},
        {"Description", "Description"},
        {"Copyright", "Copyright"},
        {"Creation Time", "CreationTime"},
        {"Software", "Software"},
        {"Source", "Source"},
        {"Comment", "Comment"},
        {"Warning", "Warning"},
    }};
    for (const auto& [theirs, ours] : keys)
        if (keyword == theirs)
            header.entries.insert_or_assign(std::string(ours), PropertyList(textFrom(value)));
}

void readText(std::string_view data, PngHeader& header) {
    const std::size_t end = data.find('\0');
    if (end != std::string_view::npos)
        addText(data.substr(0, end), data.substr(end + 1), header);
}

/// Keyword, two bytes about compression, language, translated keyword, text; compressed ones are
/// rare and left aside.
void readInternationalText(std::string_view data, PngHeader& header) {
    const std::size_t end = data.find('\0');
    if (end == std::string_view::npos || data.size() < end + 3 || data[end + 1] != 0)
        return;
    const std::string_view keyword = data.substr(0, end);
    data.remove_prefix(end + 3);
    for (int i = 0; i < 2; ++i) {
        const std::size_t stop = data.find('\0');
        if (stop == std::string_view::npos)
            return;
        data.remove_prefix(stop + 1);
    }
    addText(keyword, data, header);
}

void readGamma(Bytes data, PngHeader& header) {
    header.entries.insert_or_assign("Gamma", static_cast<double>(big32(data, 0)) / 100'000);
}

void readChunk(std::string_view name, const Data& data, PngHeader& header) {
    if (name == "IHDR")
        readImageHeader(data, header);
    else if (name == "pHYs")
        readPhysicalSize(data, header);
    else if (name == "tEXt")
        readText(textOf(data), header);
    else if (name == "iTXt")
        readInternationalText(textOf(data), header);
    else if (name == "gAMA")
        readGamma(data, header);
    else if (name == "sRGB" && !data.empty())
        header.entries.insert_or_assign("sRGBIntent", std::to_integer<int>(data[0]));
    else if (name == "eXIf")
        header.exif = data;
}

bool isWanted(std::string_view name) {
    constexpr std::array<std::string_view, 7> wanted = {"IHDR", "pHYs", "tEXt", "iTXt",
                                                        "gAMA", "sRGB", "eXIf"};
    return std::find(wanted.begin(), wanted.end(), name) != wanted.end();
}

bool checkSumHolds(Bytes chunk) {
    const Bytes summed = chunk.subspan(4, chunk.size() - 8);
    const uLong sum =
        crc32(0, reinterpret_cast<const Bytef*>(summed.data()), static_cast<uInt>(summed.size()));
    return sum == big32(chunk, chunk.size() - 4);
}

/// Chunks cannot be walked backwards, but the name with a length and a check sum that fit cannot
/// stand in compressed pixels by chance.
Data exifAfterPixels(ByteSource& source, std::uint64_t pixels) {
    constexpr std::uint64_t window = 65'536;
    const std::uint64_t start =
        std::max(pixels, source.size() > window ? source.size() - window : 0);
    const Data tail = source.bytes(start, window);
    const std::string_view text = textOf(tail);
    for (std::size_t at = text.find("eXIf", 4); at != std::string_view::npos;
         at = text.find("eXIf", at + 1)) {
        const std::uint64_t length = big32(tail, at - 4);
        if (length > tail.size() || at - 4 + frameLength + length > tail.size())
            continue;
        const Bytes chunk = Bytes(tail).subspan(at - 4, frameLength + length);
        if (checkSumHolds(chunk))
            return Data(chunk.begin() + 8, chunk.end() - 4);
    }
    return {};
}

} // namespace

PngHeader readPngHeader(ByteSource& source) {
    PngHeader header;
    std::uint64_t position = signatureLength;
    for (int i = 0; i < maximumChunks; ++i) {
        std::array<std::byte, 8> frame;
        if (!source.fill(position, frame))
            break;
        const std::uint64_t length = big32(frame, 0);
        const std::string_view name = textOf(frame).substr(4);
        if (header.size.width == 0 && name != "IHDR")
            throw Failure{reason::damaged};
        if (name == "IDAT" || name == "IEND")
            break;
        if (name == "tRNS")
            header.hasTransparentColour = true;
        if (isWanted(name) && length <= maximumMetadataSize) {
            const Data data = source.bytes(position + 8, length);
            if (data.size() < length)
                break;
            readChunk(name, data, header);
        }
        position += frameLength + length;
    }
    if (header.size.width == 0)
        throw Failure{reason::cutShort};
    if (header.exif.empty())
        header.exif = exifAfterPixels(source, position);
    return header;
}

} // namespace zorvan::imageio
