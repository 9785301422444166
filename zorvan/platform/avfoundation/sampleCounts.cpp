#include <zorvan/platform/avfoundation/internal/sampleCounts.h>

#include <array>
#include <string_view>

#include <unistd.h>

namespace zorvan::avfoundation {
namespace {

constexpr bool isOneOf(std::string_view type, std::string_view types) {
    for (; !types.empty(); types.remove_prefix(4))
        if (types.starts_with(type))
            return true;
    return false;
}

/// Walks over the boxes and adds up what they count.
class SampleCount {
public:
    SampleCount(int file, std::int64_t size) : file_(file), size_(size) {}

    bool fits() {
        // Old codecs of speech count single values of sound, and take a part of a byte for each.
        constexpr std::uint64_t mostOfByte = 32;
        walk(0, size_, 0);
        return count_ <= mostOfByte * static_cast<std::uint64_t>(size_);
    }

private:
    using Bytes = std::array<char, 16>;

    void walk(std::int64_t at, std::int64_t end, int depth) {
        constexpr int mostBoxes = 100'000, mostDepth = 8;
        while (end - at >= 8 && depth < mostDepth && ++boxes_ < mostBoxes) {
            const Bytes start = read(at);
            std::int64_t length = static_cast<std::int64_t>(number(start, 0));
            std::int64_t head = 8;
            if (length == 1) {
                length = static_cast<std::int64_t>(number(start, 8) << 32 | number(start, 12));
                head = 16;
            }
            if (length == 0 || length > end - at)
                length = end - at; // cut short, which FFmpeg bears
            if (length < head)
                return;
            look({start.data() + 4, 4}, at + head, at + length, depth);
            at += length;
        }
    }

    void look(std::string_view type, std::int64_t at, std::int64_t end, int depth) {
        // Which fields follow for each sample.
        constexpr std::uint64_t ofEachSample = 0xF00;
        if (isOneOf(type, "moovtrakmdiaminfstblmooftraf"))
            return walk(at, end, depth + 1);
        if (type != "stsz" && type != "trun")
            return;
        const Bytes table = read(at);
        if (type == "stsz" && number(table, 4) != 0)
            count_ += number(table, 8);
        else if (type == "trun" && (number(table, 0) & ofEachSample) == 0)
            count_ += number(table, 4);
    }

    /// 0 past the end.
    Bytes read(std::int64_t at) const {
        Bytes bytes = {};
        if (::pread(file_, bytes.data(), bytes.size(), at) < 0)
            bytes = {};
        return bytes;
    }

    static std::uint64_t number(const Bytes& bytes, std::size_t offset) {
        std::uint64_t value = 0;
        for (const char byte : std::string_view(bytes.data() + offset, 4))
            value = value << 8 | static_cast<std::uint8_t>(byte);
        return value;
    }

    const int file_;
    const std::int64_t size_;
    std::uint64_t count_ = 0;
    int boxes_ = 0;
};

} // namespace

bool samplesFit(int file, std::int64_t size) noexcept {
    std::array<char, 4> type = {};
    const bool isRead = ::pread(file, type.data(), type.size(), 4) == 4;
    const bool isInBoxes =
        isRead && isOneOf({type.data(), type.size()}, "ftypstypmoovmdatfreeskipwidepnotmoof");
    return !isInBoxes || SampleCount(file, size).fits();
}

} // namespace zorvan::avfoundation
