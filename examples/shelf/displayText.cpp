#include "displayText.h"

#include <algorithm>
#include <cstdint>
#include <locale.h>
#include <optional>
#include <vector>
#include <wchar.h>

namespace {

struct Character {
    std::string_view bytes;
    std::optional<char32_t> code; // absent for a byte that is no UTF-8
};

std::optional<char32_t> decoded(std::string_view bytes) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    if (bytes.size() == 1)
        return byte(0) < 0x80 ? std::optional<char32_t>(byte(0)) : std::nullopt;
    char32_t code = byte(0) & (0x7Fu >> bytes.size());
    for (std::size_t i = 1; i < bytes.size(); ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return std::nullopt;
        code = code << 6 | (byte(i) & 0x3Fu);
    }
    constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < least[bytes.size()] || code > 0x10FFFF || isSurrogate)
        return std::nullopt;
    return code;
}

/// Takes the first character off; a broken sequence comes byte by byte.
Character takeCharacter(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
    Character character{text.substr(0, 1), std::nullopt};
    if (length <= text.size() && first < 0xF8)
        if (const auto code = decoded(text.substr(0, length)))
            character = {text.substr(0, length), code};
    text.remove_prefix(character.bytes.size());
    return character;
}

std::vector<Character> characters(std::string_view text) {
    std::vector<Character> result;
    while (!text.empty())
        result.push_back(takeCharacter(text));
    return result;
}

/// The columns of a character, by the Unicode tables of the C library; below 0 for one that cannot
/// be printed.
int columns(char32_t code) {
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    if (!unicode)
        return code >= 0x20 && code != 0x7F ? 1 : -1;
    const locale_t before = uselocale(unicode);
    const int width = wcwidth(static_cast<wchar_t>(code));
    uselocale(before);
    return width;
}

/// Signs that change the direction of the text around them, or hide.
bool isDeceptive(char32_t code) {
    return (code >= 0x200B && code <= 0x200F) || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2060 && code <= 0x206F) || code == 0xFEFF || code == 0x061C;
}

std::string hexadecimal(std::uint32_t value, std::size_t digits) {
    std::string text;
    for (std::size_t shift = digits * 4; shift > 0; shift -= 4)
        text += "0123456789ABCDEF"[value >> (shift - 4) & 15];
    return text;
}

std::string escaped(const Character& character) {
    if (!character.code)
        return "\\x" + hexadecimal(static_cast<unsigned char>(character.bytes[0]), 2);
    switch (*character.code) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    }
    const char32_t code = *character.code;
    if (code < 0x80)
        return "\\x" + hexadecimal(code, 2);
    return code < 0x10000 ? "\\u" + hexadecimal(code, 4) : "\\U" + hexadecimal(code, 8);
}

std::size_t widthOf(const Character& character) {
    return static_cast<std::size_t>(std::max(0, columns(character.code.value_or('?'))));
}

/// As many of the characters as fit into `width` columns, from the front.
template <class Iterator>
Iterator fitting(Iterator first, Iterator last, std::size_t width) {
    std::size_t used = 0;
    while (first != last && (used += widthOf(*first)) <= width)
        ++first;
    return first;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Takes a run of digits off, without its leading zeros.
std::string_view takeNumber(std::string_view& text) {
    std::size_t end = 0;
    while (end < text.size() && isDigit(text[end]))
        ++end;
    std::string_view number = text.substr(0, end);
    text.remove_prefix(end);
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

/// The place of a character that is no digit: a slash before all others, letters in either case
/// alike.
int rank(char c) {
    if (c == '/')
        return 0;
    const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    return static_cast<unsigned char>(lower) + 1;
}

int compareNaturally(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty()) {
        if (isDigit(a[0]) && isDigit(b[0])) {
            const std::string_view left = takeNumber(a), right = takeNumber(b);
            if (left.size() != right.size())
                return left.size() < right.size() ? -1 : 1;
            if (const int order = left.compare(right))
                return order;
            continue;
        }
        if (rank(a[0]) != rank(b[0]))
            return rank(a[0]) - rank(b[0]);
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    return static_cast<int>(!a.empty()) - static_cast<int>(!b.empty());
}

} // namespace

std::string forDisplay(std::string_view bytes) {
    std::string text;
    for (const Character& character : characters(bytes)) {
        const bool isPlain =
            character.code && columns(*character.code) >= 0 && !isDeceptive(*character.code);
        if (isPlain && *character.code != 0)
            text += character.bytes;
        else
            text += escaped(character);
    }
    return text;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (const Character& character : characters(text))
        width += widthOf(character);
    return width;
}

std::string shortened(std::string_view text, std::size_t width) {
    if (displayWidth(text) <= width)
        return std::string(text);
    if (width == 0)
        return {};
    const std::vector<Character> all = characters(text);
    const auto front = fitting(all.begin(), all.end(), width / 2);
    const auto back =
        fitting(all.rbegin(), std::make_reverse_iterator(front), width - 1 - width / 2).base();
    std::string result;
    for (auto character = all.begin(); character != front; ++character)
        result += character->bytes;
    result += "…";
    for (auto character = back; character != all.end(); ++character)
        result += character->bytes;
    return result;
}

std::string padded(std::string text, std::size_t width) {
    const std::size_t used = displayWidth(text);
    return text.append(width > used ? width - used : 0, ' ');
}

bool comesBefore(std::string_view a, std::string_view b) {
    const int order = compareNaturally(a, b);
    return order != 0 ? order < 0 : a < b;
}
