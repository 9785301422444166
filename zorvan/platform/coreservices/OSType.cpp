#include <zorvan/platform/coreservices/UTType.h>

#include <algorithm>
#include <array>

namespace zorvan {

namespace {

/// The characters of the bytes 0x80 to 0xFF in four-character codes.
constexpr auto upperHalf = [] {
    std::string_view rest = "ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü"
                            "†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø"
                            "¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›ﬁﬂ"
                            "‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";
    std::array<std::string_view, 128> characters;
    for (std::string_view& character : characters) {
        character = rest.substr(0, static_cast<unsigned char>(rest[0]) < 0xE0 ? 2 : 3);
        rest.remove_prefix(character.size());
    }
    return characters;
}();

/// Takes the byte of the first character off `text`; absent when there is none.
std::optional<std::uint8_t> takeByte(std::string_view& text) {
    const bool isPlain = !text.empty() && static_cast<unsigned char>(text[0]) < 0x80;
    const auto found = std::find_if(upperHalf.begin(), upperHalf.end(),
                                    [&](std::string_view each) { return text.starts_with(each); });
    if (!isPlain && found == upperHalf.end())
        return std::nullopt;
    const auto byte = isPlain ? text[0] : 0x80 + (found - upperHalf.begin());
    text.remove_prefix(isPlain ? 1 : found->size());
    return static_cast<std::uint8_t>(byte);
}

} // namespace

std::string UTCreateStringForOSType(std::uint32_t code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto byte = static_cast<std::uint8_t>(code >> shift);
        if (byte < 0x80)
            text += static_cast<char>(byte);
        else
            text += upperHalf[byte - 0x80u];
    }
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
