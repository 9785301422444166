#pragma once

#include <cstddef>
#include <string_view>

namespace zorvan::internal {

/// How many bytes the first character of the text takes, which must not be empty; 0 when they are
/// not well-formed UTF-8: overlong forms, surrogates and what lies past U+10FFFF are not.
std::size_t utf8SequenceLength(std::string_view text) noexcept;

/// Whether the text is well-formed UTF-8 throughout.
bool isUTF8(std::string_view text) noexcept;

/// How many bytes of the text to keep, at most `most`, so that no character is cut.
inline std::size_t utf8PrefixLength(std::string_view text, std::size_t most) noexcept {
    if (text.size() <= most)
        return text.size();
    while (most > 0 && (static_cast<unsigned char>(text[most]) & 0xC0) == 0x80)
        --most;
    return most;
}

} // namespace zorvan::internal
