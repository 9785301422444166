#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unicode/utf8.h>

namespace zorvan::internal {

/// The code point at `offset`, which moves past it; negative for a maximal ill-formed subsequence.
/// `offset` must lie inside the text.
inline std::int32_t nextCodePoint(std::string_view text, std::size_t& offset) noexcept {
    std::int32_t codePoint;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion" // in the macro
    U8_NEXT(text.data(), offset, text.size(), codePoint);
#pragma GCC diagnostic pop
    return codePoint;
}

/// The code point, or ill-formed subsequence, that ends at `offset`, which moves to its start.
/// `offset` must lie after the start of the text.
inline std::int32_t previousCodePoint(std::string_view text, std::size_t& offset) noexcept {
    const std::size_t start = offset - std::min<std::size_t>(offset, U8_MAX_LENGTH);
    auto place = static_cast<std::int32_t>(offset - start);
    std::int32_t codePoint;
    U8_PREV(text.data() + start, 0, place, codePoint);
    offset = start + static_cast<std::size_t>(place);
    return codePoint;
}

/// Adds the code point, which is no surrogate.
inline void appendCodePoint(std::string& text, std::int32_t codePoint) {
    std::uint8_t bytes[U8_MAX_LENGTH];
    std::size_t count = 0;
    U8_APPEND_UNSAFE(bytes, count, codePoint);
    text.append(reinterpret_cast<const char*>(bytes), count);
}

} // namespace zorvan::internal
