#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zorvan::internal {

/// Appends "%" and the two hexadecimal digits of a byte, in upper case.
void appendPercentEscape(std::string& text, char byte);

/// The text with the bytes escaped that `isPlain` does not let through.
template <class IsPlain>
std::string percentEscaped(std::string_view text, IsPlain isPlain) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        if (isPlain(c))
            escaped += c;
        else
            appendPercentEscape(escaped, c);
    }
    return escaped;
}

/// The bytes that a text with escapes stands for. Absent when an escape is broken.
std::optional<std::string> percentUnescaped(std::string_view text);

} // namespace zorvan::internal
