#include <zorvan/platform/foundation/internal/UTF8.h>

namespace zorvan::internal {

std::size_t utf8SequenceLength(std::string_view text) noexcept {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length)
        return 0;
    // The second byte is what rules out overlong forms, surrogates and what lies past the end.
    const unsigned char least = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    const unsigned char most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (byte(1) < least || byte(1) > most)
        return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    }
    return length;
}

bool isUTF8(std::string_view text) noexcept {
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

} // namespace zorvan::internal
