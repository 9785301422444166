#include <zorvan/text/internal/Documents.h>

#include <zorvan/platform/textservices/Unicode.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace zorvan::internal {

bool isSet(const AttributeDictionary& attributes, std::string_view name) noexcept {
    const bool* value = attribute<bool>(attributes, name);
    return value && *value;
}

TextAlignment alignmentOf(const AttributeDictionary& attributes) noexcept {
    const auto* alignment = attribute<TextAlignment>(attributes, AttributeName::alignment);
    return alignment ? *alignment : TextAlignment::left;
}

std::int64_t superscriptLevel(const AttributeDictionary& attributes) noexcept {
    const auto* level = attribute<std::int64_t>(attributes, AttributeName::superscript);
    return level ? *level : 0;
}

bool isHarmlessLink(std::string_view address) {
    // Readers drop such characters before they look for the scheme, so they could hide one.
    if (std::any_of(address.begin(), address.end(),
                    [](char c) { return static_cast<unsigned char>(c) <= 0x20; }))
        return false;
    const std::size_t end = address.find_first_of(":/?#");
    if (end == std::string_view::npos || address[end] != ':')
        return true;
    constexpr std::array<std::string_view, 4> harmless = {"http", "https", "ftp", "mailto"};
    const std::string scheme = lowercased(address.substr(0, end));
    return std::find(harmless.begin(), harmless.end(), scheme) != harmless.end();
}

int colorByte(double component) noexcept {
    if (!(component > 0))
        return 0;
    return static_cast<int>(std::lround(std::min(component, 1.0) * 255));
}

std::string documentNumber(double value) {
    constexpr double largest = 10000;
    if (!(std::abs(value) < largest))
        value = value > 0 ? largest : 0;
    const double rounded = static_cast<double>(std::lround(value * 100)) / 100;
    std::array<char, 16> text;
    return {text.data(),
            std::to_chars(text.begin(), text.end(), rounded, std::chars_format::fixed).ptr};
}

} // namespace zorvan::internal
