#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zorvan::internal {

/// What stands for a maximal ill-formed subsequence.
inline constexpr std::int32_t illFormed = -1;

struct TrailBounds {
    std::uint8_t low;
    std::uint8_t high;
};

/// What may follow a lead byte: overlong forms, surrogates and code points past the last are no
/// text.
constexpr TrailBounds firstTrailBounds(std::uint8_t lead) noexcept {
    switch (lead) {
    case 0xE0:
        return {0xA0, 0xBF};
    case 0xED:
        return {0x80, 0x9F};
    case 0xF0:
        return {0x90, 0xBF};
    case 0xF4:
        return {0x80, 0x8F};
    default:
        return {0x80, 0xBF};
    }
}

/// The code point at `offset`, which moves past it, or past the ill-formed subsequence there.
/// `offset` must lie inside the text.
inline std::int32_t nextCodePoint(std::string_view text, std::size_t& offset) noexcept {
    const auto lead = static_cast<std::uint8_t>(text[offset++]);
    if (lead < 0x80)
        return lead;
    if (lead < 0xC2 || lead > 0xF4)
        return illFormed;
    const int trails = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    auto [low, high] = firstTrailBounds(lead);
    std::int32_t codePoint = lead & (0x3F >> trails);
    for (int i = 0; i < trails; ++i) {
        if (offset == text.size())
            return illFormed;
        const auto trail = static_cast<std::uint8_t>(text[offset]);
        if (trail < low || trail > high)
            return illFormed;
        ++offset;
        codePoint = codePoint << 6 | (trail & 0x3F);
        low = 0x80;
        high = 0xBF;
    }
    return codePoint;
}

/// The code point, or ill-formed subsequence, that ends at `offset`, which moves to its start.
/// `offset` must lie after the start of the text.
inline std::int32_t previousCodePoint(std::string_view text, std::size_t& offset) noexcept {
    for (std::size_t length = 4; length > 1; --length) {
        if (length > offset)
            continue;
        std::size_t end = offset - length;
        const std::int32_t codePoint = nextCodePoint(text.substr(0, offset), end);
        if (end == offset) {
            offset -= length;
            return codePoint;
        }
    }
    const auto last = static_cast<std::uint8_t>(text[--offset]);
    return last < 0x80 ? last : illFormed;
}

} // namespace zorvan::internal
