#include <zorvan/platform/imageio/internal/PngHeader.h>

#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <zlib.h>

namespace zorvan::imageio {
namespace {

constexpr std::uint64_t signatureLength = 8;
constexpr std::uint64_t frameLength = 12; // length, name and check sum of a chunk
constexpr int maximumChunks = 10'000;

void readImageHeader(Bytes data, PngHeader& header) {
    if (data.size() < 13)
        throw Failure{reason::damaged};
    header.size = {big32(data, 0), big32(data, 4)};
    header.depth = std::to_integer<int>(data[8]);
    header.colorType = std::to_integer<int>(data[9]);
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
    constexpr std::array<std::string_view, 9> keys = {"Title",     "Author",       "Description",
                                                      "Copyright", "CreationTime", "Software",
                                                      "Source",    "Comment",      "Warning"};
    const std::string_view key = keyword == "Creation Time" ? "CreationTime" : keyword;
    const bool isKnown = std::find(keys.begin(), keys.end(), key) != keys.end();
    if (isKnown && keyword != "CreationTime")
        header.entries.insert_or_assign(std::string(key), PropertyList(textFrom(value)));
}

/// What some programs keep as text: a line with a name, one with a length, then lines of
/// hexadecimal digits.
Data rawProfile(std::string_view text) {
    for (int line = 0; line < 3; ++line) // the first is empty
        text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
    Data result;
    int high = -1;
    for (const char c : text) {
        const int digit = internal::hexDigit(c);
        if (digit < 0)
            continue;
        if (high >= 0)
            result.push_back(static_cast<std::byte>(high << 4 | digit));
        high = high >= 0 ? -1 : digit;
    }
    return result;
}

void readKeyedText(std::string_view keyword, std::string_view value, PngHeader& header) {
    const bool isExif = keyword == "Raw profile type exif" || keyword == "Raw profile type APP1";
    if (!isExif)
        return addText(keyword, value, header);
    const Data profile = rawProfile(value);
    const Bytes block = withoutExifSignature(profile);
    if (header.exif.empty() && block.size() < profile.size())
        header.exif.assign(block.begin(), block.end());
}

/// Takes what stands before the next zero; absent when there is none.
std::optional<std::string_view> takeWord(std::string_view& data) {
    const std::size_t end = data.find('\0');
    if (end == std::string_view::npos)
        return std::nullopt;
    const std::string_view word = data.substr(0, end);
    data.remove_prefix(end + 1);
    return word;
}

void readText(Bytes chunk, PngHeader& header) {
    std::string_view data = textOf(chunk);
    if (const auto keyword = takeWord(data))
        readKeyedText(*keyword, data, header);
}

/// Empty when it is damaged, or takes more than all metadata may together.
std::string inflated(std::string_view compressed, PngHeader& header) {
    z_stream stream = {};
    if (inflateInit(&stream) != Z_OK)
        throw Failure{reason::noMemory};
    const std::unique_ptr<z_stream, decltype(&inflateEnd)> end(&stream, inflateEnd);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(compressed.data()));
    stream.avail_in = static_cast<uInt>(compressed.size());
    std::string result;
    std::array<char, 16'384> piece;
    int status = Z_OK;
    while (status == Z_OK && header.inflatedSize <= maximumMetadataSize) {
        stream.next_out = reinterpret_cast<Bytef*>(piece.data());
        stream.avail_out = static_cast<uInt>(piece.size());
        status = inflate(&stream, Z_NO_FLUSH);
        result.append(piece.data(), piece.size() - stream.avail_out);
        header.inflatedSize += piece.size() - stream.avail_out;
    }
    return status == Z_STREAM_END ? result : std::string();
}

/// Keyword, a byte for the method of compression, text.
void readCompressedText(Bytes chunk, PngHeader& header) {
    std::string_view data = textOf(chunk);
    const auto keyword = takeWord(data);
    if (keyword && data.size() > 1 && data[0] == 0)
        readKeyedText(*keyword, inflated(data.substr(1), header), header);
}

/// Keyword, two bytes about compression, language, translated keyword, text.
void readInternationalText(Bytes chunk, PngHeader& header) {
    std::string_view data = textOf(chunk);
    const auto keyword = takeWord(data);
    if (!keyword || data.size() < 2 || data[1] != 0)
        return;
    const bool isCompressed = data[0] != 0;
    data.remove_prefix(2);
    if (takeWord(data) && takeWord(data))
        readKeyedText(*keyword, isCompressed ? inflated(data, header) : std::string(data), header);
}

void readGamma(Bytes data, PngHeader& header) {
    header.entries.insert_or_assign("Gamma", static_cast<double>(big32(data, 0)) / 100'000);
}

void readIntent(Bytes data, PngHeader& header) {
    if (!data.empty())
        header.entries.insert_or_assign("sRGBIntent", std::to_integer<int>(data[0]));
}

void readExif(Bytes data, PngHeader& header) { header.exif.assign(data.begin(), data.end()); }

struct Chunk {
    std::string_view name;
    void (*read)(Bytes data, PngHeader& header);
};
constexpr std::array<Chunk, 8> chunks = {{
    {"IHDR", readImageHeader},
    {"pHYs", readPhysicalSize},
    {"tEXt", readText},
    {"zTXt", readCompressedText},
    {"iTXt", readInternationalText},
    {"gAMA", readGamma},
    {"sRGB", readIntent},
    {"eXIf", readExif},
}};

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
        const auto chunk = std::ranges::find(chunks, name, &Chunk::name);
        if (chunk != chunks.end() && length <= maximumMetadataSize) {
            const Data data = source.bytes(position + 8, length);
            if (data.size() < length)
                break;
            chunk->read(data, header);
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
