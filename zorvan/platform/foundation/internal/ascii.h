#pragma once

#include <cstdint>
#include <string_view>

namespace zorvan::internal {

// Characters of ASCII, whatever the locale; no other byte is any of these.

constexpr bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

constexpr bool isLetter(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isAlphanumeric(char c) noexcept { return isLetter(c) || isDigit(c); }

/// A space, or one of the controls from the tab to the carriage return.
constexpr bool isSpace(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// A letter in lower case; any other character as it is.
constexpr char lowered(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// A text without the blanks, tabs and line ends around it.
constexpr std::string_view withoutSpace(std::string_view text) noexcept {
    constexpr std::string_view space = " \t\n\r";
    text = text.substr(0, text.find_last_not_of(space) + 1);
    return text.empty() ? text : text.substr(text.find_first_not_of(space));
}

/// The value of a hexadecimal digit of either case; -1 when it is none.
constexpr int hexDigit(char c) noexcept {
    if (isDigit(c))
        return c - '0';
    const char lower = lowered(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// The hexadecimal digit, in upper case, of the lowest four bits.
constexpr char hexDigitOf(std::uint32_t value) noexcept { return "0123456789ABCDEF"[value & 15]; }

} // namespace zorvan::internal
