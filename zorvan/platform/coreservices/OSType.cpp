#include <zorvan/platform/coreservices/UTType.h>

namespace zorvan {

namespace {

// The characters of the bytes 0x80 to 0xFF in four-character codes.
constexpr std::u16string_view upperHalf = u"\u00C4\u00C5\u00C7\u00C9\u00D1\u00D6\u00DC\u00E1\u00E0"
                                          u"\u00E2\u00E4\u00E3\u00E5\u00E7\u00E9\u00E8"
                                          u"\u00EA\u00EB\u00ED\u00EC\u00EE\u00EF\u00F1\u00F3\u00F2"
                                          u"\u00F4\u00F6\u00F5\u00FA\u00F9\u00FB\u00FC"
                                          u"\u2020\u00B0\u00A2\u00A3\u00A7\u2022\u00B6\u00DF\u00AE"
                                          u"\u00A9\u2122\u00B4\u00A8\u2260\u00C6\u00D8"
                                          u"\u221E\u00B1\u2264\u2265\u00A5\u00B5\u2202\u2211\u220F"
                                          u"\u03C0\u222B\u00AA\u00BA\u03A9\u00E6\u00F8"
                                          u"\u00BF\u00A1\u00AC\u221A\u0192\u2248\u2206\u00AB\u00BB"
                                          u"\u2026\u00A0\u00C0\u00C3\u00D5\u0152\u0153"
                                          u"\u2013\u2014\u201C\u201D\u2018\u2019\u00F7\u25CA\u00FF"
                                          u"\u0178\u2044\u20AC\u2039\u203A\uFB01\uFB02"
                                          u"\u2021\u00B7\u201A\u201E\u2030\u00C2\u00CA\u00C1\u00CB"
                                          u"\u00C8\u00CD\u00CE\u00CF\u00CC\u00D3\u00D4"
                                          u"\uF8FF\u00D2\u00DA\u00DB\u00D9\u0131\u02C6\u02DC\u00AF"
                                          u"\u02D8\u02D9\u02DA\u00B8\u02DD\u02DB\u02C7";
static_assert(upperHalf.size() == 128);

char16_t characterOf(std::uint8_t byte) { return byte < 0x80 ? byte : upperHalf[byte - 0x80u]; }

std::string encoded(char16_t character) {
    const auto byte = [](unsigned value) { return static_cast<char>(value); };
    const unsigned c = character;
    if (c < 0x80)
        return {byte(c)};
    if (c < 0x800)
        return {byte(0xC0 | c >> 6), byte(0x80 | (c & 0x3F))};
    return {byte(0xE0 | c >> 12), byte(0x80 | (c >> 6 & 0x3F)), byte(0x80 | (c & 0x3F))};
}

/// Takes the byte of the first character off `text`; absent when there is none.
std::optional<std::uint8_t> takeByte(std::string_view& text) {
    if (text.empty())
        return std::nullopt;
    const auto first = static_cast<std::uint8_t>(text.front());
    if (first < 0x80) {
        text.remove_prefix(1);
        return first;
    }
    for (unsigned byte = 0x80; byte <= 0xFF; ++byte) {
        const std::string character = encoded(characterOf(static_cast<std::uint8_t>(byte)));
        if (text.starts_with(character)) {
            text.remove_prefix(character.size());
            return static_cast<std::uint8_t>(byte);
        }
    }
    return std::nullopt;
}

} // namespace

std::string UTCreateStringForOSType(std::uint32_t code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += encoded(characterOf(static_cast<std::uint8_t>(code >> shift)));
    return text;
}

std::uint32_t UTGetOSTypeFromString(std::string_view text) noexcept {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        const std::optional<std::uint8_t> byte = takeByte(text);
        if (!byte)
            return 0;
        code = code << 8 | *byte;
    }
    return text.empty() ? code : 0;
}

} // namespace zorvan
