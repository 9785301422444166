#include <zorvan/platform/imageio/internal/Iptc.h>

#include <zorvan/platform/imageio/internal/Outline.h>

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan::imageio {
namespace {

struct Field {
    int number;
    std::string_view key;
    bool repeats = false;
};

/// The fields of the application record that are texts.
constexpr std::array<Field, 20> fields = {{
    {5, "ObjectName"},
    {15, "Category"},
    {20, "SupplementalCategory", true},
    {25, "Keywords", true},
    {40, "SpecialInstructions"},
    {55, "DateCreated"},
    {60, "TimeCreated"},
    {80, "Byline", true},
    {85, "BylineTitle", true},
    {90, "City"},
    {92, "SubLocation"},
    {95, "Province/State"},
    {100, "Country/PrimaryLocationCode"},
    {101, "Country/PrimaryLocationName"},
    {103, "OriginalTransmissionReference"},
    {105, "Headline"},
    {110, "Credit"},
    {115, "Source"},
    {116, "CopyrightNotice"},
    {120, "Caption/Abstract"},
}};

void addField(int number, Bytes value, PropertyList::Dictionary& into) {
    const auto field = std::ranges::find(fields, number, &Field::number);
    if (field == fields.end())
        return;
    const std::string key(field->key);
    std::string text = textFrom(textOf(value));
    if (!field->repeats) {
        into.insert_or_assign(key, PropertyList(std::move(text)));
        return;
    }
    PropertyList& list = into.try_emplace(key, PropertyList::Array()).first->second;
    list.as<PropertyList::Array>()->emplace_back(std::move(text));
}

} // namespace

void addIptcProperties(Bytes block, PropertyList::Dictionary& properties) {
    constexpr int marker = 0x1C;
    constexpr int applicationRecord = 2;
    PropertyList::Dictionary found;
    while (block.size() >= 5 && std::to_integer<int>(block[0]) == marker) {
        const std::size_t length = big16(block, 3);
        // A set top bit announces a length of more than 32 KB, which no text field has.
        if (length >= 0x8000 || length > block.size() - 5)
            break;
        if (std::to_integer<int>(block[1]) == applicationRecord)
            addField(std::to_integer<int>(block[2]), block.subspan(5, length), found);
        block = block.subspan(5 + length);
    }
    if (!found.empty())
        section(properties, "{IPTC}").merge(found);
}

void addPhotoshopProperties(Bytes block, PropertyList::Dictionary& properties) {
    constexpr std::string_view signature("Photoshop 3.0\0", 14);
    constexpr int iptcResource = 0x0404;
    if (textOf(block).starts_with(signature))
        block = block.subspan(signature.size());
    while (block.size() >= 12 && textOf(block).starts_with("8BIM")) {
        const int resource = big16(block, 4);
        // The name is a counted text, padded to an even length together with its count.
        const std::size_t nameLength =
            (std::to_integer<std::size_t>(block[6]) + 2) & ~std::size_t{1};
        const std::size_t start = 6 + nameLength + 4;
        if (start > block.size())
            break;
        const std::size_t length = big32(block, start - 4);
        if (length > block.size() - start)
            break;
        if (resource == iptcResource)
            addIptcProperties(block.subspan(start, length), properties);
        const std::size_t next = start + length + (length & 1);
        block = next < block.size() ? block.subspan(next) : Bytes();
    }
}

} // namespace zorvan::imageio
