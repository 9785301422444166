#include <zorvan/platform/imageio/internal/TiffProperties.h>

#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Iptc.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/TiffSamples.h>

#include <array>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan::imageio {
namespace {

struct Field {
    std::uint32_t tag;
    const char* key;
};

constexpr std::array<Field, 9> texts = {{{TIFFTAG_DOCUMENTNAME, "DocumentName"},
                                         {TIFFTAG_IMAGEDESCRIPTION, "ImageDescription"},
                                         {TIFFTAG_MAKE, "Make"},
                                         {TIFFTAG_MODEL, "Model"},
                                         {TIFFTAG_SOFTWARE, "Software"},
                                         {TIFFTAG_DATETIME, "DateTime"},
                                         {TIFFTAG_ARTIST, "Artist"},
                                         {TIFFTAG_HOSTCOMPUTER, "HostComputer"},
                                         {TIFFTAG_COPYRIGHT, "Copyright"}}};

constexpr std::array<Field, 4> shorts = {{{TIFFTAG_COMPRESSION, "Compression"},
                                          {TIFFTAG_PHOTOMETRIC, "PhotometricInterpretation"},
                                          {TIFFTAG_ORIENTATION, "Orientation"},
                                          {TIFFTAG_RESOLUTIONUNIT, "ResolutionUnit"}}};

PropertyList::Dictionary tiffSection(const TiffFile& file) {
    PropertyList::Dictionary result;
    for (const Field& field : texts)
        if (const auto text = file.field<const char*>(field.tag); text && *text)
            result.emplace(field.key, textFrom(*text));
    for (const Field& field : shorts)
        if (const auto value = file.field<std::uint16_t>(field.tag))
            result.emplace(field.key, *value);
    if (const auto x = file.field<float>(TIFFTAG_XRESOLUTION); x && std::isfinite(*x))
        result.emplace("XResolution", *x);
    if (const auto y = file.field<float>(TIFFTAG_YRESOLUTION); y && std::isfinite(*y))
        result.emplace("YResolution", *y);
    if (TIFFIsTiled(file.get()) != 0) {
        result.emplace("TileWidth", file.fieldOrDefault<std::uint32_t>(TIFFTAG_TILEWIDTH, 0));
        result.emplace("TileLength", file.fieldOrDefault<std::uint32_t>(TIFFTAG_TILELENGTH, 0));
    }
    return result;
}

std::string_view colorModelOf(int photometric) {
    switch (photometric) {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
        return "Gray";
    case PHOTOMETRIC_SEPARATED:
        return "CMYK";
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_ICCLAB:
    case PHOTOMETRIC_ITULAB:
        return "Lab";
    default:
        return "RGB";
    }
}

std::optional<int> orientationOf(const TiffFile& file) {
    const auto value = file.field<std::uint16_t>(TIFFTAG_ORIENTATION);
    const bool known = value && *value >= 1 && *value <= 8;
    return known ? std::optional<int>(*value) : std::nullopt;
}

template <class Number>
PropertyList listed(const void* values, std::size_t count) {
    constexpr std::size_t maximumValues = 256;
    PropertyList::Array result;
    for (std::size_t i = 0; i < std::min(count, maximumValues); ++i) {
        Number number;
        std::memcpy(&number, static_cast<const char*>(values) + i * sizeof number, sizeof number);
        result.push_back(number);
    }
    return count == 1 ? result[0] : PropertyList(std::move(result));
}

/// A field of the Exif directory, whose kind only the library's own description tells.
std::optional<PropertyList> exifValue(TIFF* tiff, const TIFFField* field) {
    const std::uint32_t tag = TIFFFieldTag(field);
    const TIFFDataType type = TIFFFieldDataType(field);
    const int readCount = TIFFFieldReadCount(field);
    if (type == TIFF_ASCII && !TIFFFieldPassCount(field)) {
        const char* text = nullptr;
        if (TIFFGetField(tiff, tag, &text) != 1 || !text)
            return std::nullopt;
        return PropertyList(textFrom(text));
    }
    if (TIFFFieldPassCount(field)) {
        std::uint16_t count = 0;
        const void* values = nullptr;
        if (readCount != TIFF_VARIABLE || type != TIFF_SHORT ||
            TIFFGetField(tiff, tag, &count, &values) != 1 || count == 0 || !values)
            return std::nullopt;
        return listed<std::uint16_t>(values, count);
    }
    if (readCount != 1)
        return std::nullopt;
    std::array<char, 8> value = {};
    if (TIFFGetField(tiff, tag, value.data()) != 1)
        return std::nullopt;
    switch (type) {
    case TIFF_SHORT:
        return listed<std::uint16_t>(value.data(), 1);
    case TIFF_LONG:
        return listed<std::uint32_t>(value.data(), 1);
    case TIFF_RATIONAL:
    case TIFF_SRATIONAL:
        return TIFFFieldSetGetSize(field) == 8 ? listed<double>(value.data(), 1)
                                               : listed<float>(value.data(), 1);
    default:
        return std::nullopt;
    }
}

PropertyList::Dictionary exifSection(TIFF* tiff) {
    PropertyList::Dictionary result;
    const int count = TIFFGetTagListCount(tiff);
    for (int i = 0; i < count; ++i) {
        const TIFFField* field = TIFFFieldWithTag(tiff, TIFFGetTagListEntry(tiff, i));
        if (!field || !TIFFFieldName(field))
            continue;
        if (std::optional<PropertyList> value = exifValue(tiff, field))
            result.emplace(TIFFFieldName(field), std::move(*value));
    }
    return result;
}

void addBlocks(const TiffFile& file, PropertyList::Dictionary& properties) {
    std::uint32_t count = 0;
    const void* bytes = nullptr;
    if (TIFFGetField(file.get(), TIFFTAG_PHOTOSHOP, &count, &bytes) == 1 && bytes)
        addPhotoshopProperties({static_cast<const std::byte*>(bytes), count}, properties);
}

std::optional<Outline::Resolution> resolutionIn(const PropertyList::Dictionary& tiff) {
    const auto x = findNumber(tiff, "XResolution");
    const auto y = findNumber(tiff, "YResolution");
    const double unit = findNumber(tiff, "ResolutionUnit").value_or(RESUNIT_INCH);
    if (!x || !y || *x <= 0 || *y <= 0 || unit == RESUNIT_NONE)
        return std::nullopt;
    const double perInch = unit == RESUNIT_CENTIMETER ? 2.54 : 1;
    return Outline::Resolution{*x * perInch, *y * perInch};
}

} // namespace

PropertyList::Dictionary tiffProperties(TiffFile& file, tdir_t page) {
    const int photometric = file.field<std::uint16_t>(TIFFTAG_PHOTOMETRIC).value_or(0);
    const TiffLayout layout = layoutOf(file);
    if (layout.size.width < 1 || layout.size.height < 1)
        throw Failure{reason::damaged};
    PropertyList::Dictionary tiff = tiffSection(file);
    PropertyList::Dictionary result =
        propertiesOf({.size = layout.size,
                      .depth = layout.bits,
                      .colorModel = colorModelOf(photometric),
                      .hasAlpha = layout.alpha != TiffLayout::Alpha::none,
                      .orientation = orientationOf(file),
                      .dpi = resolutionIn(tiff)});
    result.emplace("{TIFF}", std::move(tiff));
    addBlocks(file, result);
    std::uint64_t offset = 0;
    if (TIFFGetField(file.get(), TIFFTAG_EXIFIFD, &offset) == 1 && offset != 0) {
        if (TIFFReadEXIFDirectory(file.get(), offset) == 1) {
            PropertyList::Dictionary exif = exifSection(file.get());
            if (!exif.empty())
                result.emplace("{Exif}", std::move(exif));
        }
        file.select(page);
    }
    return result;
}

} // namespace zorvan::imageio
