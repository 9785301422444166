#include <zorvan/text/internal/Documents.h>

#include <zorvan/platform/textservices/Unicode.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zorvan::internal {

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
    const long hundredths = std::lround(value * 100);
    const long magnitude = std::abs(hundredths);
    std::string text = hundredths < 0 ? "-" : "";
    text += std::to_string(magnitude / 100);
    if (const long places = magnitude % 100; places != 0) {
        text += places < 10 ? ".0" : ".";
        text += std::to_string(places % 10 == 0 ? places / 10 : places);
    }
    return text;
}

} // namespace zorvan::internal
