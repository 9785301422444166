#include <zorvan/platform/imageio/internal/StoredProperties.h>

#include <array>
#include <string_view>
#include <utility>

namespace zorvan::imageio {
namespace {

struct TextTag {
    std::uint16_t tag;
    std::string_view key;
};

constexpr std::array<TextTag, 7> tiffTexts = {{{0x010E, "ImageDescription"},
                                               {0x010F, "Make"},
                                               {0x0110, "Model"},
                                               {0x0131, "Software"},
                                               {0x0132, "DateTime"},
                                               {0x013B, "Artist"},
                                               {0x8298, "Copyright"}}};
constexpr std::array<TextTag, 3> exifTexts = {
    {{0x9003, "DateTimeOriginal"}, {0x9004, "DateTimeDigitized"}, {0xA434, "LensModel"}}};

constexpr std::uint16_t orientationTag = 0x0112;
constexpr std::uint16_t exifDirectoryTag = 0x8769;

/// All texts together must fit into the 64 KB of a JPEG segment.
constexpr std::size_t maximumTextLength = 6000;

std::string shortened(std::string text) {
    text.resize(std::min(text.size(), text.find('\0')));
    if (text.size() <= maximumTextLength)
        return text;
    std::size_t length = maximumTextLength;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        --length;
    text.resize(length);
    return text;
}

template <std::size_t Count>
std::vector<StoredProperties::Text> textsOf(const PropertyList::Dictionary* section,
                                            const std::array<TextTag, Count>& tags) {
    std::vector<StoredProperties::Text> result;
    if (!section)
        return result;
    for (const TextTag& tag : tags)
        if (const std::string* text = findText(*section, tag.key); text && !text->empty())
            result.push_back({tag.tag, shortened(*text)});
    return result;
}

/// The caption of a record of IPTC's, as the description of a picture without one. Its tag is the
/// lowest, so it stands first.
void addCaption(const PropertyList::Dictionary& properties,
                std::vector<StoredProperties::Text>& texts) {
    const std::uint16_t description = tiffTexts.front().tag;
    const PropertyList::Dictionary* iptc = findSection(properties, "{IPTC}");
    const std::string* caption = iptc ? findText(*iptc, "Caption/Abstract") : nullptr;
    const bool hasOther = !texts.empty() && texts.front().tag == description;
    if (caption && !caption->empty() && !hasOther)
        texts.insert(texts.begin(), {description, shortened(*caption)});
}

std::optional<int> orientationIn(const PropertyList::Dictionary* dictionary) {
    const std::optional<double> value =
        dictionary ? findNumber(*dictionary, "Orientation") : std::nullopt;
    for (int orientation = 1; orientation <= 8; ++orientation)
        if (value == orientation)
            return orientation;
    return std::nullopt;
}

/// One directory of a TIFF structure, little-endian, its longer values after it.
class Directory {
public:
    Directory(std::size_t start, std::size_t entryCount)
        : dataStart_(start + 2 + 12 * entryCount + 4) {
        put(entries_, static_cast<std::uint32_t>(entryCount), 2);
    }

    void addNumber(std::uint16_t tag, std::uint16_t type, std::uint32_t value) {
        put(entries_, tag, 2);
        put(entries_, type, 2);
        put(entries_, 1, 4);
        put(entries_, value, 4);
    }

    void addText(const StoredProperties::Text& text) {
        constexpr std::uint32_t asciiType = 2;
        const std::size_t length = text.value.size() + 1;
        put(entries_, text.tag, 2);
        put(entries_, asciiType, 2);
        put(entries_, static_cast<std::uint32_t>(length), 4);
        if (length > 4)
            put(entries_, static_cast<std::uint32_t>(dataStart_ + data_.size()), 4);
        Data& place = length > 4 ? data_ : entries_;
        for (const char c : text.value)
            place.push_back(static_cast<std::byte>(c));
        // The terminating zero, then filling: values begin at even positions, short ones take 4
        // bytes.
        const std::size_t padded = length > 4 ? length + (length & 1) : 4;
        place.resize(place.size() + padded - text.value.size());
    }

    std::uint32_t end() const { return static_cast<std::uint32_t>(dataStart_ + data_.size()); }

    void appendTo(Data& out) {
        put(entries_, 0, 4); // no directory after this one
        out.insert(out.end(), entries_.begin(), entries_.end());
        out.insert(out.end(), data_.begin(), data_.end());
    }

private:
    static void put(Data& out, std::uint32_t value, int width) {
        for (int i = 0; i < width; ++i)
            out.push_back(static_cast<std::byte>(value >> 8 * i & 0xFF));
    }

    std::size_t dataStart_;
    Data entries_ = {};
    Data data_ = {};
};

} // namespace

StoredProperties storedProperties(const PropertyList::Dictionary& properties) {
    const PropertyList::Dictionary* tiff = findSection(properties, "{TIFF}");
    StoredProperties result = {.orientation = orientationIn(&properties),
                               .texts = textsOf(tiff, tiffTexts),
                               .exifTexts = textsOf(findSection(properties, "{Exif}"), exifTexts)};
    if (!result.orientation)
        result.orientation = orientationIn(tiff);
    addCaption(properties, result.texts);
    const std::optional<double> x = findNumber(properties, "DPIWidth");
    const std::optional<double> y = findNumber(properties, "DPIHeight");
    constexpr double limit = 65535;
    if (x && y && *x >= 1 && *y >= 1 && *x <= limit && *y <= limit)
        result.dpi = {*x, *y};
    return result;
}

Data exifBlock(const StoredProperties& properties) {
    constexpr std::uint16_t shortType = 3;
    constexpr std::uint16_t longType = 4;
    if (properties.saysNothing())
        return {};
    constexpr std::array<unsigned char, 8> head = {'I', 'I', 42, 0, 8, 0, 0, 0};
    Data result;
    for (const unsigned char byte : head)
        result.push_back(static_cast<std::byte>(byte));
    const bool hasExif = !properties.exifTexts.empty();
    std::vector<StoredProperties::Text> texts = properties.texts;
    Directory first(8, texts.size() + (properties.orientation ? 1 : 0) + (hasExif ? 1 : 0));
    // The entries go by ascending tag, and where the Exif directory begins is only known in the
    // end.
    std::uint32_t firstEnd = first.end();
    for (const StoredProperties::Text& text : texts)
        firstEnd += text.value.size() + 1 > 4
                        ? static_cast<std::uint32_t>((text.value.size() + 2) & ~std::size_t{1})
                        : 0;
    bool orientationDue = properties.orientation.has_value();
    bool exifDue = hasExif;
    const auto addNumbersBefore = [&](unsigned tag) {
        if (orientationDue && orientationTag < tag)
            first.addNumber(orientationTag, shortType,
                            static_cast<std::uint32_t>(*properties.orientation));
        orientationDue = orientationDue && orientationTag >= tag;
        if (exifDue && exifDirectoryTag < tag)
            first.addNumber(exifDirectoryTag, longType, firstEnd);
        exifDue = exifDue && exifDirectoryTag >= tag;
    };
    for (const StoredProperties::Text& text : texts) {
        addNumbersBefore(text.tag);
        first.addText(text);
    }
    addNumbersBefore(0x10000);
    first.appendTo(result);
    if (hasExif) {
        Directory exif(firstEnd, properties.exifTexts.size());
        for (const StoredProperties::Text& text : properties.exifTexts)
            exif.addText(text);
        exif.appendTo(result);
    }
    return result;
}

} // namespace zorvan::imageio
