#include <zorvan/platform/avfoundation/internal/sampleCounts.h>

#include <algorithm>
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
    void walk(std::int64_t at, std::int64_t end, int depth) {
        constexpr int mostBoxes = 100'000, mostDepth = 8;
        while (end - at >= 8 && depth < mostDepth && ++boxes_ < mostBoxes) {
            std::int64_t length = static_cast<std::int64_t>(number(at));
            std::int64_t head = 8;
            if (length == 1) {
                length = static_cast<std::int64_t>(number(at + 8) << 32 | number(at + 12));
                head = 16;
            }
            if (length == 0 || length > end - at)
                length = end - at; // cut short, which FFmpeg bears
            if (length < head)
                return;
            look(type(at + 4), at + head, at + length, depth);
            at += length;
        }
    }

    void look(const std::array<char, 4>& name, std::int64_t at, std::int64_t end, int depth) {
        const std::string_view type(name.data(), name.size());
        // Which fields follow for each sample.
        constexpr std::uint64_t ofEachSample = 0xF00;
        if (isOneOf(type, "moovtrakmdiaminfstblmooftraf"))
            walk(at, end, depth + 1);
        else if (type == "stsz" && number(at + 4) != 0)
            count_ += number(at + 8);
        else if (type == "trun" && (number(at) & ofEachSample) == 0)
            count_ += number(at + 4);
    }

    /// Of four bytes; 0 past the end.
    std::uint64_t number(std::int64_t at) const {
        std::uint64_t value = 0;
        for (const char byte : type(at))
            value = value << 8 | static_cast<std::uint8_t>(byte);
        return value;
    }

    std::array<char, 4> type(std::int64_t at) const {
        std::array<char, 4> bytes = {};
        if (::pread(file_, bytes.data(), bytes.size(), at) != 4)
            bytes = {};
        return bytes;
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
