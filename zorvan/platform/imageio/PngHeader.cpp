#include <zorvan/platform/imageio/internal/PngHeader.h>

#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
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

std::optional<std::uint8_t> hexDigit(char c) {
    if (c >= '0' && c <= '9')
        return static_cast<std::uint8_t>(c - '0');
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? std::optional(static_cast<std::uint8_t>(lower - 'a' + 10))
                                        : std::nullopt;
}

/// What some programs keep as text: a line with a name, one with a length, then lines of
/// hexadecimal digits.
Data rawProfile(std::string_view text) {
    for (int line = 0; line < 3; ++line) // the first is empty
        text.remove_prefix(std::min(text.find('\n'), text.size() - 1) + 1);
    Data result;
    std::optional<std::uint8_t> high;
    for (const char c : text) {
        const std::optional<std::uint8_t> digit = hexDigit(c);
        if (!digit)
            continue;
        if (high)
            result.push_back(static_cast<std::byte>(*high << 4 | *digit));
        high = high ? std::nullopt : digit;
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

void readText(std::string_view data, PngHeader& header) {
    const std::size_t end = data.find('\0');
    if (end != std::string_view::npos)
        readKeyedText(data.substr(0, end), data.substr(end + 1), header);
}

/// Empty when it is damaged or takes more than metadata may.
std::string inflated(std::string_view compressed) {
    z_stream stream = {};
    if (inflateInit(&stream) != Z_OK)
        throw Failure{reason::noMemory};
    const std::unique_ptr<z_stream, decltype(&inflateEnd)> end(&stream, inflateEnd);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(compressed.data()));
    stream.avail_in = static_cast<uInt>(compressed.size());
    std::string result;
    std::array<char, 16'384> piece;
    int status = Z_OK;
    while (status == Z_OK && result.size() <= maximumMetadataSize) {
        stream.next_out = reinterpret_cast<Bytef*>(piece.data());
        stream.avail_out = static_cast<uInt>(piece.size());
        status = inflate(&stream, Z_NO_FLUSH);
        result.append(piece.data(), piece.size() - stream.avail_out);
    }
    return status == Z_STREAM_END ? result : std::string();
}

/// Keyword, a byte for the method of compression, text.
void readCompressedText(std::string_view data, PngHeader& header) {
    const std::size_t end = data.find('\0');
    if (end != std::string_view::npos && data.size() > end + 2 && data[end + 1] == 0)
        readKeyedText(data.substr(0, end), inflated(data.substr(end + 2)), header);
}

/// Keyword, two bytes about compression, language, translated keyword, text.
void readInternationalText(std::string_view data, PngHeader& header) {
    const std::size_t end = data.find('\0');
    if (end == std::string_view::npos || data.size() < end + 3 || data[end + 2] != 0)
        return;
    const bool isCompressed = data[end + 1] != 0;
    const std::string_view keyword = data.substr(0, end);
    data.remove_prefix(end + 3);
    for (int i = 0; i < 2; ++i) {
        const std::size_t stop = data.find('\0');
        if (stop == std::string_view::npos)
            return;
        data.remove_prefix(stop + 1);
    }
    readKeyedText(keyword, isCompressed ? inflated(data) : std::string(data), header);
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
    else if (name == "zTXt")
        readCompressedText(textOf(data), header);
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
    constexpr std::array<std::string_view, 8> wanted = {"IHDR", "pHYs", "tEXt", "zTXt",
                                                        "iTXt", "gAMA", "sRGB", "eXIf"};
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
