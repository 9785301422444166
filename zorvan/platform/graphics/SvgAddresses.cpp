#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/base64.h>
#include <zorvan/platform/foundation/internal/percentEscapes.h>
#include <zorvan/platform/graphics/internal/SvgAddresses.h>

#include <algorithm>

namespace zorvan {

namespace {

constexpr std::string_view scheme = "data:";

// As addresses are read, blanks at their ends do not count, tabs and line ends nowhere.

constexpr bool isBlank(char c) noexcept { return c >= '\0' && c <= ' '; }
constexpr bool isPassedOver(char c) noexcept { return c == '\t' || c == '\n' || c == '\r'; }

std::string_view withoutBlanksBefore(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    return text;
}

std::string_view withoutBlanksAfter(std::string_view text) {
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// A style with the characters that stand behind backslashes, in lower case.
std::string withoutEscapes(std::string_view style) {
    constexpr std::size_t mostDigits = 6;
    std::string text;
    for (std::size_t at = 0; at < style.size();) {
        if (style[at] != '\\') {
            text += internal::lowered(style[at++]);
            continue;
        }
        std::size_t code = 0, digits = 0;
        for (++at; at < style.size() && digits < mostDigits && internal::hexDigit(style[at]) >= 0;
             ++at, ++digits)
            code = code * 16 + static_cast<std::size_t>(internal::hexDigit(style[at]));
        if (digits == 0)
            continue; // what follows stands for itself
        text += code < 0x80 ? internal::lowered(static_cast<char>(code)) : '?';
        if (at < style.size() && internal::isSpace(style[at]))
            ++at;
    }
    std::erase_if(text, isPassedOver);
    return text;
}

/// What an address begins after in a style; a blank when none begins at `at`.
char opening(std::string_view style, std::size_t at) {
    const std::string_view before = withoutBlanksAfter(style.substr(0, at));
    const char last = before.empty() ? ' ' : before.back();
    return last == '(' || last == '"' || last == '\'' ? last : ' ';
}

} // namespace

bool isDataAddress(std::string_view reference) {
    std::size_t matching = 0;
    for (const char c : withoutBlanksBefore(reference)) {
        if (isPassedOver(c))
            continue;
        if (internal::lowered(c) != scheme[matching])
            return false;
        if (++matching == scheme.size())
            return true;
    }
    return false;
}

std::optional<std::string> contentOfDataAddress(std::string_view reference) {
    std::string address(reference.substr(0, reference.find('#')));
    std::erase_if(address, isPassedOver);
    const std::size_t comma = address.find(',');
    if (comma == address.npos)
        return std::nullopt;
    const std::string_view body = withoutBlanksAfter(std::string_view(address).substr(comma + 1));
    std::optional<std::string> content = internal::percentUnescaped(body);
    std::string kind(withoutBlanksAfter(std::string_view(address).substr(0, comma)));
    std::ranges::transform(kind, kind.begin(), internal::lowered);
    if (!content || !kind.ends_with("base64"))
        return content;
    const std::optional<Data> bytes = internal::decodeBase64(*content);
    if (!bytes)
        return std::nullopt;
    return std::string(reinterpret_cast<const char*>(bytes->data()), bytes->size());
}

bool takesContentFromAddress(std::string_view style) {
    if (style.find_first_of("(\"'\\") == style.npos) // nothing that an address begins after
        return false;
    const bool hasEscapes = style.find('\\') != style.npos;
    const std::string text = withoutEscapes(style);
    const bool imports = text.find("@import") != text.npos;
    for (std::size_t at = text.find(scheme); at != text.npos; at = text.find(scheme, at + 1)) {
        const char open = opening(text, at);
        if (open == ' ')
            continue;
        // A part of what is there is named after it.
        const std::size_t end = text.find_first_not_of(
            "abcdefghijklmnopqrstuvwxyz0123456789+/=;,.-_", at + scheme.size());
        const char close = open == '(' ? ')' : open;
        if (imports || hasEscapes || end == text.npos || text[end] != close)
            return true;
    }
    return false;
}

} // namespace zorvan
