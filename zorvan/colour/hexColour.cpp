#include <zorvan/colour/RGBA.h>
#include <zorvan/numbers-geometry/RealNumber.h>
#include <zorvan/platform/foundation/internal/ascii.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace zorvan {

namespace {

constexpr auto hexValues = [] {
    std::array<std::int8_t, 256> values{};
    for (std::size_t byte = 0; byte < values.size(); ++byte)
        values[byte] = static_cast<std::int8_t>(internal::hexDigit(static_cast<char>(byte)));
    return values;
}();

constexpr auto unitOfByte = [] {
    std::array<double, 256> units{};
    for (std::size_t byte = 0; byte < units.size(); ++byte)
        units[byte] = static_cast<double>(byte) / 255;
    return units;
}();

int hexValue(char c) noexcept { return hexValues[static_cast<unsigned char>(c)]; }

std::string_view skippingSpace(std::string_view text) noexcept {
    while (!text.empty() && internal::isSpace(text.front()))
        text.remove_prefix(1);
    return text;
}

// The low bits of the number that the text begins with, after white space and an optional "0x".
std::optional<std::uint64_t> scanHex(std::string_view text) noexcept {
    text = skippingSpace(text);
    if (text.size() > 2 && text[0] == '0' && (text[1] | 0x20) == 'x' && hexValue(text[2]) >= 0)
        text.remove_prefix(2);
    if (text.empty() || hexValue(text.front()) < 0)
        return std::nullopt;
    std::uint64_t value = 0;
    for (const char c : text) {
        const int digit = hexValue(c);
        if (digit < 0)
            break;
        value = value << 4 | static_cast<std::uint64_t>(digit);
    }
    return value;
}

// Code points, a carriage return and its line feed being one; stray continuation bytes count for
// none.
std::size_t characterCount(std::string_view text) noexcept {
    std::size_t count = 0;
    char previous = 0;
    for (const char c : text) {
        const bool isContinuation = (static_cast<unsigned char>(c) & 0xC0) == 0x80;
        if (!isContinuation && !(c == '\n' && previous == '\r'))
            ++count;
        previous = c;
    }
    return count;
}

RGBA withNibbles(std::uint64_t v) noexcept {
    const auto unit = [v](int shift) { return unitOfByte[(v >> shift & 15) * 17]; };
    return {unit(12), unit(8), unit(4), unit(0)};
}

RGBA withBytes(std::uint64_t v) noexcept {
    const auto unit = [v](int shift) { return unitOfByte[v >> shift & 255]; };
    return {unit(24), unit(16), unit(8), unit(0)};
}

// The usual forms with six or eight digits, without a step per rule.
std::optional<RGBA> readPlainForm(std::string_view text) noexcept {
    if ((text.size() != 7 && text.size() != 9) || text[0] != '#')
        return std::nullopt;
    std::uint32_t value = 0;
    int allDigits = 0;
    for (const char c : text.substr(1)) {
        const int digit = hexValue(c);
        allDigits |= digit;
        value = value << 4 | static_cast<std::uint32_t>(digit & 15);
    }
    if (allDigits < 0)
        return std::nullopt;
    return withBytes(text.size() == 7 ? std::uint64_t{value} << 8 | 255 : value);
}

void appendByte(std::string& text, double component) {
    const auto value = static_cast<std::uint32_t>(toByte(component));
    int shift = value < 256 ? 4 : (std::bit_width(value) - 1) / 4 * 4;
    for (; shift >= 0; shift -= 4)
        text += internal::hexDigitOf(value >> shift);
}

} // namespace

std::optional<RGBA> RGBA::make(HexString argument) {
    const std::string_view text = argument.hexString;
    if (const auto plain = readPlainForm(text))
        return plain;
    const std::string_view trimmed = skippingSpace(text);
    if (trimmed.empty() || trimmed.front() != '#')
        return std::nullopt;
    const auto value = scanHex(trimmed.substr(1));
    if (!value)
        return std::nullopt;
    switch (characterCount(text) - 1) {
    case 3:
        return withNibbles(*value << 4 | 15);
    case 4:
        return withNibbles(*value);
    case 6:
        return withBytes(*value << 8 | 255);
    case 8:
        return withBytes(*value);
    default:
        std::puts("Invalid hex string, number of chars after '#' should be either 3, 4, 6 or 8");
        return std::nullopt;
    }
}

std::string RGBA::hexString() const {
    std::string text = "#";
    appendByte(text, r);
    appendByte(text, g);
    appendByte(text, b);
    if (a != 1)
        appendByte(text, a);
    return text;
}

} // namespace zorvan
