#include <zorvan/platform/imageio/internal/HevcSequence.h>

#include <cstdint>

namespace zorvan::imageio {
namespace {

/// The bits of a parameter set. Past the end they are 0, and `overran` tells.
class BitReader {
public:
    explicit BitReader(const Data& bytes) : bytes_(bytes) {}

    std::uint32_t bits(int count) {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i)
            value = value << 1 | bit();
        return value;
    }
    void skip(std::size_t count) { position_ += count; }

    /// A number whose length is told by the zeros before it.
    std::uint32_t number() {
        int zeros = 0;
        while (zeros < 31 && !overran() && bit() == 0)
            ++zeros;
        return (1u << zeros) - 1 + bits(zeros);
    }
    bool overran() const { return position_ > bytes_.size() * 8; }

private:
    std::uint32_t bit() {
        const std::size_t at = position_++;
        if (at / 8 >= bytes_.size())
            return 0;
        return std::to_integer<std::uint32_t>(bytes_[at / 8]) >> (7 - at % 8) & 1;
    }

    const Data& bytes_;
    std::size_t position_ = 0;
};

/// Takes out the bytes that keep a start code from appearing within a unit.
Data withoutEmulationPrevention(Bytes unit) {
    Data result;
    result.reserve(unit.size());
    int zeros = 0;
    for (const std::byte b : unit) {
        if (zeros >= 2 && b == std::byte{3}) {
            zeros = 0;
            continue;
        }
        zeros = b == std::byte{0} ? zeros + 1 : 0;
        result.push_back(b);
    }
    return result;
}

void skipProfileAndLevels(BitReader& reader, std::uint32_t subLayers) {
    constexpr std::size_t profileBits = 88;
    constexpr std::size_t levelBits = 8;
    reader.skip(profileBits + levelBits);
    std::size_t following = 0;
    for (std::uint32_t i = 0; i < subLayers; ++i) {
        following += reader.bits(1) != 0 ? profileBits : 0;
        following += reader.bits(1) != 0 ? levelBits : 0;
    }
    if (subLayers > 0)
        reader.skip(2 * std::size_t{8 - subLayers});
    reader.skip(following);
}

/// What a decoder cuts off at the right and below, in samples of colour.
struct Window {
    std::uint32_t left = 0, right = 0, top = 0, bottom = 0;
};

std::optional<PixelSize> sizeInSequence(Bytes unit) {
    constexpr std::size_t maximumLength = 4096;
    const Data bytes = withoutEmulationPrevention(unit.first(std::min(unit.size(), maximumLength)));
    BitReader reader(bytes);
    reader.skip(16 + 4); // the unit's head, the video parameter set
    const std::uint32_t subLayers = reader.bits(3);
    reader.skip(1);
    skipProfileAndLevels(reader, subLayers);
    reader.number(); // the set's own number
    const std::uint32_t chroma = reader.number();
    if (chroma == 3)
        reader.skip(1);
    const std::int64_t width = reader.number();
    const std::int64_t height = reader.number();
    Window window;
    if (reader.bits(1) != 0)
        window = {reader.number(), reader.number(), reader.number(), reader.number()};
    if (reader.overran() || chroma > 3)
        return std::nullopt;
    const std::int64_t unitWidth = chroma == 1 || chroma == 2 ? 2 : 1;
    const std::int64_t unitHeight = chroma == 1 ? 2 : 1;
    const PixelSize shown = {width - unitWidth * (std::int64_t{window.left} + window.right),
                             height - unitHeight * (std::int64_t{window.top} + window.bottom)};
    if (shown.width < 1 || shown.height < 1)
        return std::nullopt;
    return shown;
}

} // namespace

std::optional<PixelSize> hevcPictureSize(Bytes configuration) {
    constexpr std::size_t headLength = 23;
    constexpr std::uint64_t sequenceKind = 33;
    if (configuration.size() < headLength)
        return std::nullopt;
    const std::uint64_t arrays = bigEndian(configuration, headLength - 1, 1);
    int unitsLeft = 64; // they may be empty
    std::size_t at = headLength;
    for (std::uint64_t array = 0; array < arrays && at + 3 <= configuration.size(); ++array) {
        const std::uint64_t kind = bigEndian(configuration, at, 1) & 0x3F;
        const int units = big16(configuration, at + 1);
        at += 3;
        for (int unit = 0; unit < units; ++unit) {
            if (--unitsLeft < 0)
                return std::nullopt;
            const std::size_t length = big16(configuration, at);
            if (configuration.size() < 2 + length || at > configuration.size() - 2 - length)
                return std::nullopt;
            if (kind == sequenceKind)
                return sizeInSequence(configuration.subspan(at + 2, length));
            at += 2 + length;
        }
    }
    return std::nullopt;
}

} // namespace zorvan::imageio
