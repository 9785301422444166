#include <zorvan/colour/HexNSColorTransformer.h>
#include <zorvan/colour/NSColor.h>

#include <optional>

namespace zorvan {

namespace {

std::optional<std::string_view> textIn(const std::any& value) noexcept {
    if (const auto* text = std::any_cast<std::string>(&value))
        return *text;
    if (const auto* text = std::any_cast<std::string_view>(&value))
        return *text;
    if (const auto* text = std::any_cast<const char*>(&value); text && *text)
        return *text;
    return std::nullopt;
}

} // namespace

void HexNSColorTransformer::registerIfNeeded() {
    addValueTransformer(std::make_shared<HexNSColorTransformer>(), name);
}

const std::type_info& HexNSColorTransformer::transformedValueClass() noexcept {
    return typeid(NSColor);
}

std::any HexNSColorTransformer::transformedValue(const std::any& value) const {
    const auto text = textIn(value);
    if (!text)
        return NSColor::black;
    const auto color = NSColor::make({.hexString = *text});
    return color ? std::any(*color) : std::any();
}

std::any HexNSColorTransformer::reverseTransformedValue(const std::any& value) const {
    const auto* color = std::any_cast<NSColor>(&value);
    return (color ? *color : NSColor::black).hexString();
}

} // namespace zorvan
