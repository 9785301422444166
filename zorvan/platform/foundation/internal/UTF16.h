#pragma once

#include <cstddef>
#include <string>

namespace zorvan::internal {

inline void appendUTF8(std::string& text, char32_t scalar) {
    if (scalar < 0x80) {
        text += static_cast<char>(scalar);
        return;
    }
    int left = scalar < 0x800 ? 1 : scalar < 0x10000 ? 2 : 3; // of six bits each
    text += static_cast<char>((0xFF00u >> (left + 1) & 0xFF) | scalar >> (6 * left));
    while (left-- > 0)
        text += static_cast<char>(0x80 | (scalar >> (6 * left) & 0x3F));
}

/// The text of so many units of UTF-16, which `unit` gives by number. A lone surrogate becomes
/// U+FFFD.
template <class Unit>
std::string utf8FromUTF16(std::size_t count, Unit unit) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        const char32_t first = unit(i), second = i + 1 < count ? unit(i + 1) : 0;
        const bool isPair = (first & 0xFC00) == 0xD800 && (second & 0xFC00) == 0xDC00;
        if (isPair)
            ++i;
        appendUTF8(text, isPair ? 0x10000 + ((first & 0x3FF) << 10) + (second & 0x3FF)
                         : (first & 0xF800) == 0xD800 ? 0xFFFD
                                                      : first);
    }
    return text;
}

} // namespace zorvan::internal
