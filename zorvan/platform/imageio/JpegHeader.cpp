#include <zorvan/platform/imageio/internal/JpegHeader.h>

#include <zorvan/platform/imageio/internal/ByteOrder.h>
#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>

#include <array>
#include <string_view>

namespace zorvan::imageio {
namespace {

using namespace std::string_view_literals;

enum Marker : int {
    sof0 = 0xC0,
    sof2 = 0xC2,
    dht = 0xC4,
    jpg = 0xC8,
    dac = 0xCC,
    sof15 = 0xCF,
    rst0 = 0xD0,
    soi = 0xD8,
    eoi = 0xD9,
    sos = 0xDA,
    app0 = 0xE0,
    app1 = 0xE1,
    app13 = 0xED,
    tem = 0x01,
};

/// More than any file that a camera or a program writes; each costs one small read.
constexpr int maximumSegments = 20'000;

bool isFrameHeader(int marker) {
    return marker >= sof0 && marker <= sof15 && marker != dht && marker != jpg && marker != dac;
}

bool standsAlone(int marker) { return marker == tem || (marker >= rst0 && marker <= soi); }

struct Segment {
    int marker;
    std::uint64_t start;
    std::uint64_t length;
};

class SegmentWalk {
public:
    explicit SegmentWalk(ByteSource& source) : source_(source) {}

    Segment next() {
        for (int i = 0; i < maximumSegments - count_; ++i) {
            const int marker = nextMarker();
            if (marker == eoi)
                return {eoi, position_, 0};
            if (standsAlone(marker))
                continue;
            std::array<std::byte, 2> length;
            require(length);
            const std::uint64_t size = big16(length, 0);
            if (size < 2)
                throw Failure{reason::damaged};
            const Segment segment = {marker, position_ + 2, size - 2};
            position_ += size;
            ++count_;
            return segment;
        }
        throw Failure{reason::damaged};
    }

private:
    void require(std::span<std::byte> out) {
        if (!source_.fill(position_, out))
            throw Failure{reason::cutShort};
    }

    /// Any number of filler bytes may stand before a marker; other bytes there are skipped as well.
    int nextMarker() {
        constexpr int maximumFiller = 65'536;
        std::array<std::byte, 1> byte;
        bool afterFill = false;
        for (int skipped = 0; skipped < maximumFiller; ++skipped) {
            require(byte);
            ++position_;
            const int value = std::to_integer<int>(byte[0]);
            if (afterFill && value != 0xFF && value != 0)
                return value;
            afterFill = value == 0xFF;
        }
        throw Failure{reason::damaged};
    }

    ByteSource& source_;
    std::uint64_t position_ = 2; // after the start-of-image marker
    int count_ = 0;
};

void readFrameHeader(const Data& data, JpegHeader& header, int marker) {
    if (data.size() < 6)
        throw Failure{reason::cutShort};
    header.depth = std::to_integer<int>(data[0]);
    header.size = {big16(data, 3), big16(data, 1)};
    header.componentCount = std::to_integer<int>(data[5]);
    header.progressive = (marker & 3) == (sof2 & 3);
}

void readJfif(const Data& data, JpegHeader& header) {
    if (!textOf(data).starts_with("JFIF\0"sv) || data.size() < 12)
        return;
    header.jfif = {std::to_integer<int>(data[5]), std::to_integer<int>(data[6]),
                   std::to_integer<int>(data[7]), big16(data, 8), big16(data, 10)};
}

void readExif(const Data& data, JpegHeader& header) {
    if (!header.exif.empty() || !textOf(data).starts_with("Exif\0"sv))
        return;
    const Bytes block = withoutExifSignature(data);
    header.exif.assign(block.begin(), block.end());
}

void readPhotoshop(const Data& data, JpegHeader& header) {
    constexpr std::string_view signature = "Photoshop 3.0\0"sv;
    const bool fits = header.photoshop.size() + data.size() <= maximumMetadataSize;
    if (textOf(data).starts_with(signature) && fits)
        header.photoshop.insert(header.photoshop.end(), data.begin() + signature.size(),
                                data.end());
}

void readSegments(ByteSource& source, JpegHeader& header) {
    SegmentWalk walk(source);
    for (;;) {
        const Segment segment = walk.next();
        const auto data = [&] { return source.bytes(segment.start, segment.length); };
        if (segment.marker == sos || segment.marker == eoi)
            return;
        if (isFrameHeader(segment.marker) && header.size.width == 0)
            readFrameHeader(data(), header, segment.marker);
        else if (segment.marker == app0)
            readJfif(data(), header);
        else if (segment.marker == app1)
            readExif(data(), header);
        else if (segment.marker == app13)
            readPhotoshop(data(), header);
    }
}

} // namespace

JpegHeader readJpegHeader(ByteSource& source) {
    JpegHeader header;
    try {
        readSegments(source, header);
    } catch (const Failure&) {
        // What follows the frame header adds little; the size is worth having without it.
        if (header.size.width == 0)
            throw;
    }
    if (header.size.width == 0 || header.size.height == 0)
        throw Failure{reason::damaged};
    return header;
}

} // namespace zorvan::imageio
