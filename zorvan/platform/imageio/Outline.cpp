#include <zorvan/platform/imageio/internal/Outline.h>

#include <zorvan/platform/foundation/internal/UTF8.h>
#include <zorvan/platform/foundation/internal/valueUnder.h>

#include <string>

namespace zorvan::imageio {
namespace {

std::string fromLatin1(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            result += c;
        } else {
            result += static_cast<char>(0xC0 | byte >> 6);
            result += static_cast<char>(0x80 | (byte & 0x3F));
        }
    }
    return result;
}

} // namespace

PropertyList::Dictionary propertiesOf(const Outline& outline) {
    PropertyList::Dictionary result = {
        {"PixelWidth", outline.size.width}, {"PixelHeight", outline.size.height},
        {"Depth", outline.depth},           {"ColorModel", outline.colorModel},
        {"HasAlpha", outline.hasAlpha},
    };
    if (outline.orientation)
        result.emplace("Orientation", *outline.orientation);
    if (outline.dpi) {
        result.emplace("DPIWidth", outline.dpi->x);
        result.emplace("DPIHeight", outline.dpi->y);
    }
    return result;
}

PropertyList::Dictionary& section(PropertyList::Dictionary& properties, std::string_view name) {
    const auto place = properties.try_emplace(std::string(name), PropertyList::Dictionary()).first;
    if (!place->second.as<PropertyList::Dictionary>())
        place->second = PropertyList::Dictionary();
    return *place->second.as<PropertyList::Dictionary>();
}

std::optional<double> findNumber(const PropertyList::Dictionary& properties, std::string_view key) {
    const auto* number = zorvan::internal::valueUnder<NSNumber>(properties, key);
    return number ? std::optional(number->doubleValue()) : std::nullopt;
}

std::string textFrom(std::string_view bytes) {
    std::string_view text = bytes.substr(0, bytes.find('\0'));
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    text = text.substr(first, text.find_last_not_of(blanks) - first + 1);
    return zorvan::internal::isUTF8(text) ? std::string(text) : fromLatin1(text);
}

} // namespace zorvan::imageio
