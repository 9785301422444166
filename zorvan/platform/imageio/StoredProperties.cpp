#include <zorvan/platform/imageio/internal/StoredProperties.h>

#include <zorvan/platform/imageio/internal/ExifFields.h>

#include <utility>

namespace zorvan::imageio {
namespace {

constexpr std::uint16_t descriptionTag = 0x010E;
constexpr std::uint16_t orientationTag = 0x0112;

/// The caption of a record of IPTC's, as the description of a picture without one. Its tag is the
/// lowest, so it stands first.
void addCaption(const PropertyList::Dictionary& properties, std::vector<TiffEntry>& texts) {
    const PropertyList::Dictionary* iptc = findSection(properties, "{IPTC}");
    const std::string* caption = iptc ? findText(*iptc, "Caption/Abstract") : nullptr;
    const bool hasOther = !texts.empty() && texts.front().tag == descriptionTag;
    if (caption && !caption->empty() && !hasOther)
        texts.insert(texts.begin(), textEntry(descriptionTag, *caption));
}

std::optional<int> orientationIn(const PropertyList::Dictionary* dictionary) {
    const std::optional<double> value =
        dictionary ? findNumber(*dictionary, "Orientation") : std::nullopt;
    for (int orientation = 1; orientation <= 8; ++orientation)
        if (value == orientation)
            return orientation;
    return std::nullopt;
}

TiffEntry orientationEntry(int orientation) {
    TiffEntry entry = {
        .tag = orientationTag, .type = TiffEntry::shortNumber, .count = 1, .value = {}};
    appendNumber(entry.value, static_cast<std::uint64_t>(orientation), 2, false);
    return entry;
}

} // namespace

StoredProperties storedProperties(const PropertyList::Dictionary& properties) {
    const PropertyList::Dictionary* tiff = findSection(properties, "{TIFF}");
    StoredProperties result = {.orientation = orientationIn(&properties)};
    if (!result.orientation)
        result.orientation = orientationIn(tiff);
    if (tiff)
        result.texts = tiffTextEntries(*tiff);
    if (const auto* exif = findSection(properties, "{Exif}"))
        result.exif = exifEntries(*exif);
    if (const auto* gps = findSection(properties, "{GPS}"))
        result.gps = gpsEntries(*gps);
    addCaption(properties, result.texts);
    const std::optional<double> x = findNumber(properties, "DPIWidth");
    const std::optional<double> y = findNumber(properties, "DPIHeight");
    constexpr double limit = 65535;
    if (x && y && *x >= 1 && *y >= 1 && *x <= limit && *y <= limit)
        result.dpi = {*x, *y};
    return result;
}

Data exifBlock(const StoredProperties& properties) {
    if (properties.saysNothing())
        return {};
    std::vector<TiffEntry> first = properties.texts;
    if (properties.orientation)
        first.push_back(orientationEntry(*properties.orientation));
    return exifBlockOf(std::move(first), properties.exif, properties.gps, false);
}

} // namespace zorvan::imageio
