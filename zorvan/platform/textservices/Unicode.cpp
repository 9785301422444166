#include <zorvan/platform/textservices/Unicode.h>

#include <zorvan/platform/textservices/internal/CodePoints.h>

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/stringpiece.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <limits>

namespace zorvan {

using internal::nextCodePoint;
using internal::previousCodePoint;

namespace {

constexpr UChar32 replacement = 0xFFFD;

bool isNewline(UChar32 c) noexcept {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool contains(CharacterSet set, UChar32 c) noexcept {
    if (c < 0)
        return false;
    if (c == '\t' || u_charType(c) == U_SPACE_SEPARATOR)
        return true;
    return set == CharacterSet::whitespacesAndNewlines && isNewline(c);
}

} // namespace

std::string_view trimmed(std::string_view text, CharacterSet set) noexcept {
    std::size_t start = 0;
    for (std::size_t next = 0; next < text.size(); start = next)
        if (!contains(set, nextCodePoint(text, next)))
            break;
    std::size_t end = text.size();
    for (std::size_t previous = end; previous > start; end = previous)
        if (!contains(set, previousCodePoint(text, previous)))
            break;
    return text.substr(start, end - start);
}

std::optional<NumberInParentheses> numberInParentheses(std::string_view text) noexcept {
    std::optional<NumberInParentheses> found;
    std::size_t line = 0;
    for (std::size_t at = 0, next = 0; at < text.size(); at = next) {
        const UChar32 c = nextCodePoint(text, next);
        if (isNewline(c)) {
            if (found)
                break;
            line = next;
        } else if (c == '(') {
            const std::size_t start = next;
            for (std::size_t after = next;
                 after < text.size() && u_isdigit(nextCodePoint(text, after)); next = after) {
            }
            if (text.substr(next, 1) == ")")
                found = {text.substr(line, at - line), text.substr(start, next - start)};
        }
    }
    return found;
}

std::string lowercased(std::string_view text) {
    if (text.size() > std::numeric_limits<std::int32_t>::max())
        return std::string(text);
    UErrorCode status = U_ZERO_ERROR;
    std::string result;
    icu::StringByteSink<std::string> sink(&result, static_cast<std::int32_t>(text.size()));
    icu::CaseMap::utf8ToLower("", 0,
                              icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())),
                              sink, nullptr, status);
    return U_SUCCESS(status) ? result : std::string(text);
}

std::size_t utf16Length(std::string_view text) noexcept {
    std::size_t length = 0;
    for (std::size_t offset = 0; offset < text.size();)
        length += nextCodePoint(text, offset) > 0xFFFF ? 2 : 1;
    return length;
}

std::u16string utf16FromUTF8(std::string_view text) {
    std::u16string result;
    result.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        UChar32 c = nextCodePoint(text, offset);
        if (c < 0)
            c = replacement;
        if (c > 0xFFFF)
            result += static_cast<char16_t>(U16_LEAD(c));
        result += static_cast<char16_t>(c > 0xFFFF ? U16_TRAIL(c) : c);
    }
    return result;
}

std::string utf8FromUTF16(std::u16string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        UChar32 c;
        U16_NEXT(text.data(), offset, text.size(), c);
        if (U_IS_SURROGATE(c))
            c = replacement;
        internal::appendCodePoint(result, c);
    }
    return result;
}

} // namespace zorvan
