#include <zorvan/platform/avfoundation/internal/BufferedBytes.h>
#include <zorvan/platform/avfoundation/internal/StatedLengths.h>
#include <zorvan/platform/foundation/internal/byteNumbers.h>

namespace zorvan::avfoundation {
namespace {

using namespace std::string_view_literals;

/// A number of 32 bits between these bytes, and how many bytes of the file each of it takes.
struct Statement {
    std::string_view format, before, after;
    std::int64_t bytesOfEach;
};

constexpr Statement statements[] = {
    {"avi", "LIST", "INFO", 1}, // within such a list FFmpeg believes the length of each text
    {"wav", "LIST", "INFO", 1},
    {"flv", "times\x0A", "", 9}, // the places of key frames, each a number with its type
    {"flv", "filepositions\x0A", "", 9},
    {"mxf", "\x3F\x0D\0\x08\0\0\0\0"sv, "", 1}, // the frames of a part of the index
};

/// A file that is cut short may end within what it speaks of; more than this is missing of none.
constexpr std::int64_t mostNotThere = 1 << 16;

std::uint32_t number(std::string_view bytes, bool isBigEndian) {
    const auto order = isBigEndian ? std::endian::big : std::endian::little;
    const auto four = std::as_bytes(std::span(bytes)).first(4);
    return static_cast<std::uint32_t>(internal::numberOf(four, order));
}

/// Where the first bytes are that belong to no tag of ID3.
std::int64_t behindTags(BufferedBytes& file) {
    std::int64_t at = 0;
    for (auto head = file.at(at); std::string_view(head.data(), 3) == "ID3"; head = file.at(at)) {
        std::int64_t length = 0;
        for (std::size_t i = 6; i < 10; ++i)
            length = length << 7 | (head[i] & 0x7F);
        const bool hasFooter = head[3] == 4 && (head[5] & 0x10) != 0;
        at += length + (hasFooter ? 20 : 10);
    }
    return at;
}

} // namespace

StatedLengths::StatedLengths(std::string_view format, int file, std::int64_t size)
    : format_(format), isBigEndian_(format != "avi") {
    if (format != "wav")
        return;
    BufferedBytes bytes(file, size);
    isBigEndian_ = std::string_view(bytes.at(behindTags(bytes)).data(), 4) == "RIFX";
}

bool StatedLengths::fit(std::string_view bytes, std::int64_t rest) const noexcept {
    for (const auto& [format, before, after, bytesOfEach] : statements) {
        if (format != format_)
            continue;
        const std::size_t size = before.size() + 4 + after.size();
        for (std::size_t at = bytes.find(before); at != bytes.npos && bytes.size() - at >= size;
             at = bytes.find(before, at + 1)) {
            const std::string_view behind = bytes.substr(at + before.size());
            const std::int64_t length = number(behind, isBigEndian_) * bytesOfEach;
            const std::int64_t there = rest - static_cast<std::int64_t>(at + before.size() + 4);
            if (behind.substr(4).starts_with(after) && length > there + mostNotThere)
                return false;
        }
    }
    return true;
}

} // namespace zorvan::avfoundation
