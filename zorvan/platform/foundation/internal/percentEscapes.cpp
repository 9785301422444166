#include <zorvan/platform/foundation/internal/percentEscapes.h>

#include <zorvan/platform/foundation/internal/ascii.h>

namespace zorvan::internal {

void appendPercentEscape(std::string& text, char byte) {
    const auto value = static_cast<unsigned char>(byte);
    text += {'%', hexDigitOf(value >> 4u), hexDigitOf(value)};
}

std::optional<std::string> percentUnescaped(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        if (text.size() - i < 3 || hexDigit(text[i + 1]) < 0 || hexDigit(text[i + 2]) < 0)
            return std::nullopt;
        bytes += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
        i += 2;
    }
    return bytes;
}

} // namespace zorvan::internal
