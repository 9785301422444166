#include <zorvan/platform/imageio/internal/TiffProperties.h>

#include <zorvan/platform/imageio/internal/ExifBlock.h>
#include <zorvan/platform/imageio/internal/FormatReader.h>
#include <zorvan/platform/imageio/internal/Iptc.h>
#include <zorvan/platform/imageio/internal/Outline.h>
#include <zorvan/platform/imageio/internal/TiffSamples.h>

#include <array>
#include <cmath>
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

std::optional<int> tiffOrientation(const TiffFile& file) {
    const auto value = file.field<std::uint16_t>(TIFFTAG_ORIENTATION);
    const bool known = value && *value >= 1 && *value <= 8;
    return known ? std::optional<int>(*value) : std::nullopt;
}

PropertyList::Dictionary tiffProperties(const TiffFile& file) {
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
                      .orientation = tiffOrientation(file),
                      .dpi = resolutionIn(tiff)});
    result.emplace("{TIFF}", std::move(tiff));
    addBlocks(file, result);
    const ExifPlaces places = {
        .exif = file.field<std::uint64_t>(TIFFTAG_EXIFIFD).value_or(0),
        .gps = file.field<std::uint64_t>(TIFFTAG_GPSIFD).value_or(0),
    };
    addExifProperties(exifBlockFrom(file.source(), file.form(), places), result);
    return result;
}

} // namespace zorvan::imageio
