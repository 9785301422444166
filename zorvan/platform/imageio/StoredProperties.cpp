#include <zorvan/platform/imageio/internal/StoredProperties.h>

#include <zorvan/platform/foundation/internal/UTF8.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/valueUnder.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan::imageio {
namespace {

using internal::valueUnder;
using Section = PropertyList::Dictionary;

// The fields that are written: how, when and where a picture was taken. What describes the coded
// picture or its camera's own notes is left out.

enum class Kind {
    text,
    byte,
    shortNumber,
    longNumber,
    ratio,
    distance,
    signedRatio,
    undefined,
    version,
    comment,
    degrees,
    timeOfDay
};

TiffEntry::Type typeOf(Kind kind) {
    constexpr std::array types = {
        TiffEntry::ascii,     TiffEntry::byte,      TiffEntry::shortNumber, TiffEntry::longNumber,
        TiffEntry::ratio,     TiffEntry::ratio,     TiffEntry::signedRatio, TiffEntry::undefined,
        TiffEntry::undefined, TiffEntry::undefined, TiffEntry::ratio,       TiffEntry::ratio};
    return types[static_cast<std::size_t>(kind)];
}

struct Field {
    std::uint16_t tag;
    std::string_view key;
    Kind kind = Kind::text;
};

constexpr std::array<Field, 7> tiffFields = {{{0x010E, "ImageDescription"},
                                              {0x010F, "Make"},
                                              {0x0110, "Model"},
                                              {0x0131, "Software"},
                                              {0x0132, "DateTime"},
                                              {0x013B, "Artist"},
                                              {0x8298, "Copyright"}}};

constexpr std::array exifFields = {
    Field{0x829A, "ExposureTime", Kind::ratio},
    Field{0x829D, "FNumber", Kind::ratio},
    Field{0x8822, "ExposureProgram", Kind::shortNumber},
    Field{0x8827, "ISOSpeedRatings", Kind::shortNumber},
    Field{0x8830, "SensitivityType", Kind::shortNumber},
    Field{0x8831, "StandardOutputSensitivity", Kind::longNumber},
    Field{0x8832, "RecommendedExposureIndex", Kind::longNumber},
    Field{0x9000, "ExifVersion", Kind::version},
    Field{0x9003, "DateTimeOriginal"},
    Field{0x9004, "DateTimeDigitized"},
    Field{0x9010, "OffsetTime"},
    Field{0x9011, "OffsetTimeOriginal"},
    Field{0x9012, "OffsetTimeDigitized"},
    Field{0x9201, "ShutterSpeedValue", Kind::signedRatio},
    Field{0x9202, "ApertureValue", Kind::ratio},
    Field{0x9203, "BrightnessValue", Kind::signedRatio},
    Field{0x9204, "ExposureBiasValue", Kind::signedRatio},
    Field{0x9205, "MaxApertureValue", Kind::ratio},
    Field{0x9206, "SubjectDistance", Kind::distance},
    Field{0x9207, "MeteringMode", Kind::shortNumber},
    Field{0x9208, "LightSource", Kind::shortNumber},
    Field{0x9209, "Flash", Kind::shortNumber},
    Field{0x920A, "FocalLength", Kind::ratio},
    Field{0x9286, "UserComment", Kind::comment},
    Field{0x9290, "SubsecTime"},
    Field{0x9291, "SubsecTimeOriginal"},
    Field{0x9292, "SubsecTimeDigitized"},
    Field{0xA001, "ColorSpace", Kind::shortNumber},
    Field{0xA217, "SensingMethod", Kind::shortNumber},
    Field{0xA300, "FileSource", Kind::undefined},
    Field{0xA301, "SceneType", Kind::undefined},
    Field{0xA401, "CustomRendered", Kind::shortNumber},
    Field{0xA402, "ExposureMode", Kind::shortNumber},
    Field{0xA403, "WhiteBalance", Kind::shortNumber},
    Field{0xA404, "DigitalZoomRatio", Kind::ratio},
    Field{0xA405, "FocalLengthIn35mmFilm", Kind::shortNumber},
    Field{0xA406, "SceneCaptureType", Kind::shortNumber},
    Field{0xA407, "GainControl", Kind::shortNumber},
    Field{0xA408, "Contrast", Kind::shortNumber},
    Field{0xA409, "Saturation", Kind::shortNumber},
    Field{0xA40A, "Sharpness", Kind::shortNumber},
    Field{0xA40C, "SubjectDistanceRange", Kind::shortNumber},
    Field{0xA430, "CameraOwnerName"},
    Field{0xA431, "BodySerialNumber"},
    Field{0xA432, "LensSpecification", Kind::ratio},
    Field{0xA433, "LensMake"},
    Field{0xA434, "LensModel"},
    Field{0xA435, "LensSerialNumber"},
};

constexpr std::array gpsFields = {
    Field{0x00, "GPSVersion", Kind::byte},
    Field{0x01, "LatitudeRef"},
    Field{0x02, "Latitude", Kind::degrees},
    Field{0x03, "LongitudeRef"},
    Field{0x04, "Longitude", Kind::degrees},
    Field{0x05, "AltitudeRef", Kind::byte},
    Field{0x06, "Altitude", Kind::ratio},
    Field{0x07, "TimeStamp", Kind::timeOfDay},
    Field{0x08, "Satellites"},
    Field{0x09, "Status"},
    Field{0x0A, "MeasureMode"},
    Field{0x0B, "DOP", Kind::ratio},
    Field{0x0C, "SpeedRef"},
    Field{0x0D, "Speed", Kind::ratio},
    Field{0x0E, "TrackRef"},
    Field{0x0F, "Track", Kind::ratio},
    Field{0x10, "ImgDirectionRef"},
    Field{0x11, "ImgDirection", Kind::ratio},
    Field{0x12, "MapDatum"},
    Field{0x13, "DestLatitudeRef"},
    Field{0x14, "DestLatitude", Kind::degrees},
    Field{0x15, "DestLongitudeRef"},
    Field{0x16, "DestLongitude", Kind::degrees},
    Field{0x17, "DestBearingRef"},
    Field{0x18, "DestBearing", Kind::ratio},
    Field{0x19, "DestDistanceRef"},
    Field{0x1A, "DestDistance", Kind::ratio},
    Field{0x1D, "DateStamp"},
    Field{0x1E, "Differential", Kind::shortNumber},
    Field{0x1F, "HPositioningError", Kind::ratio},
};

// All fields together must fit into the 64 KB of a JPEG segment.
constexpr std::size_t maximumTextLength = 6000;
constexpr std::size_t maximumExifTextLength = 500;
constexpr std::size_t maximumValues = 16;

std::string_view shortened(std::string_view text, std::size_t maximumLength) {
    text = text.substr(0, text.find('\0'));
    return text.substr(0, internal::utf8PrefixLength(text, maximumLength));
}

void appendText(Data& out, std::string_view text) {
    for (const char c : text)
        out.push_back(static_cast<std::byte>(c));
}

void append(Data& out, std::uint64_t value, std::size_t width) {
    appendNumber(out, value, width, false);
}

/// One that is too long is shortened.
bool appendEndedText(Data& out, std::string_view text, std::size_t maximumLength) {
    appendText(out, shortened(text, maximumLength));
    out.push_back(std::byte{0});
    return !text.empty();
}

/// Appends the simplest fraction that cannot be told from the size of a number; false when none has
/// numbers up to `largest`.
bool appendRatio(Data& out, double value, double largest) {
    const double size = std::abs(value);
    if (!(size <= largest))
        return false;
    constexpr double precision = 1e-12;
    double numerator = 1, denominator = 0, lastNumerator = 0, lastDenominator = 1;
    for (double rest = size;;) {
        const double whole = std::floor(rest);
        const double nextNumerator = whole * numerator + lastNumerator;
        const double nextDenominator = whole * denominator + lastDenominator;
        if (nextNumerator > largest || nextDenominator > largest)
            break;
        lastNumerator = std::exchange(numerator, nextNumerator);
        lastDenominator = std::exchange(denominator, nextDenominator);
        if (std::abs(numerator / denominator - size) <= size * precision)
            break;
        rest = 1 / (rest - whole);
    }
    const auto whole = static_cast<std::int64_t>(numerator);
    append(out, static_cast<std::uint64_t>(value < 0 ? -whole : whole), 4);
    append(out, static_cast<std::uint64_t>(denominator), 4);
    return true;
}

bool appendInteger(Data& out, double value, std::size_t width) {
    const double limit = std::ldexp(1.0, static_cast<int>(width) * 8);
    if (!(value >= 0 && value < limit))
        return false;
    append(out, static_cast<std::uint64_t>(value), width);
    return true;
}

/// The numbers of a value: one, or those of a list; none when it holds anything else.
std::vector<double> numbersOf(const PropertyList& value) {
    if (const auto* number = value.as<NSNumber>())
        return {number->doubleValue()};
    std::vector<double> result;
    const auto* list = value.as<PropertyList::Array>();
    if (!list || list->size() > maximumValues)
        return result;
    for (const PropertyList& item : *list) {
        const auto* number = item.as<NSNumber>();
        if (!number)
            return {};
        result.push_back(number->doubleValue());
    }
    return result;
}

bool appendNumberOf(TiffEntry::Type type, Data& out, double value) {
    if (type == TiffEntry::signedRatio)
        return appendRatio(out, value, std::numeric_limits<std::int32_t>::max());
    if (type == TiffEntry::ratio)
        return value >= 0 && appendRatio(out, value, std::numeric_limits<std::uint32_t>::max());
    return appendInteger(out, value, sizeOfType(type));
}

/// [2, 3, 1] as "0231".
bool appendVersion(Data& out, const std::vector<double>& parts) {
    const auto isOneDigit = [](double part) { return part >= 0 && part <= 9; };
    if (parts.size() < 2 || parts.size() > 3 || !std::ranges::all_of(parts, isOneDigit))
        return false;
    out.push_back(std::byte{'0'});
    for (std::size_t i = 0; i < 3; ++i)
        out.push_back(static_cast<std::byte>('0' + (i < parts.size() ? int(parts[i]) : 0)));
    return true;
}

/// The code of a comment says how it is written; no code stands for UTF-8 too.
bool appendComment(Data& out, std::string_view text) {
    const bool isAscii = std::all_of(text.begin(), text.end(),
                                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    appendText(out, isAscii ? std::string_view("ASCII\0\0\0", 8)
                            : std::string_view("\0\0\0\0\0\0\0\0", 8));
    appendText(out, shortened(text, maximumExifTextLength));
    return !text.empty();
}

/// As degrees, minutes and seconds.
bool appendDegrees(Data& out, const std::vector<double>& numbers) {
    constexpr std::uint64_t unitsOfSecond = 1'000'000;
    if (numbers.size() != 1 || !(numbers[0] >= 0 && numbers[0] <= 360))
        return false;
    const auto units = static_cast<std::uint64_t>(std::llround(numbers[0] * 3600 * unitsOfSecond));
    const std::uint64_t seconds = units / unitsOfSecond;
    append(out, seconds / 3600, 4);
    append(out, 1, 4);
    append(out, seconds / 60 % 60, 4);
    append(out, 1, 4);
    append(out, units % (60 * unitsOfSecond), 4);
    append(out, unitsOfSecond, 4);
    return true;
}

/// "hh:mm:ss".
bool appendTimeOfDay(Data& out, std::string_view text) {
    if (text.size() != 8)
        return false;
    for (std::size_t i = 0; i < 8; i += 3) {
        const char tens = text[i], ones = text[i + 1];
        if (!internal::isDigit(tens) || !internal::isDigit(ones) || (i < 6 && text[i + 2] != ':'))
            return false;
        append(out, static_cast<std::uint64_t>((tens - '0') * 10 + (ones - '0')), 4);
        append(out, 1, 4);
    }
    return true;
}

bool appendList(TiffEntry::Type type, Data& out, const std::vector<double>& numbers) {
    return !numbers.empty() && std::all_of(numbers.begin(), numbers.end(), [&](double number) {
        return appendNumberOf(type, out, number);
    });
}

/// The largest number stands for infinity.
bool appendDistance(Data& out, const std::vector<double>& numbers) {
    if (numbers.size() != 1 || !(numbers[0] > 0) || !std::isinf(numbers[0]))
        return appendList(TiffEntry::ratio, out, numbers);
    append(out, std::numeric_limits<std::uint32_t>::max(), 4);
    append(out, 1, 4);
    return true;
}

/// False when the field cannot hold the value.
bool appendValue(Kind kind, Data& out, const PropertyList& value, std::size_t maximumLength) {
    const std::string* text = value.as<std::string>();
    switch (kind) {
    case Kind::text:
        return text && appendEndedText(out, *text, maximumLength);
    case Kind::comment:
        return text && appendComment(out, *text);
    case Kind::timeOfDay:
        return text && appendTimeOfDay(out, *text);
    case Kind::version:
        return appendVersion(out, numbersOf(value));
    case Kind::degrees:
        return appendDegrees(out, numbersOf(value));
    case Kind::distance:
        return appendDistance(out, numbersOf(value));
    default:
        return appendList(typeOf(kind), out, numbersOf(value));
    }
}

TiffEntry entryOf(std::uint16_t tag, TiffEntry::Type type, Data value) {
    const std::uint64_t count = value.size() / sizeOfType(type);
    return {tag, type, static_cast<std::uint32_t>(count), std::move(value)};
}

/// The fields that a section has, little-endian and by ascending tag, without values of another
/// kind than their field has.
std::vector<TiffEntry> entriesOf(const PropertyList::Dictionary& section,
                                 std::span<const Field> fields, std::size_t maximumLength) {
    std::vector<TiffEntry> result;
    for (const Field& field : fields) {
        const auto found = section.find(field.key);
        Data value;
        if (found != section.end() && appendValue(field.kind, value, found->second, maximumLength))
            result.push_back(entryOf(field.tag, typeOf(field.kind), std::move(value)));
    }
    return result;
}

constexpr std::uint16_t descriptionTag = 0x010E;
constexpr std::uint16_t orientationTag = 0x0112;

/// The caption of a record of IPTC's, as the description of a picture without one. Its tag is the
/// lowest, so it stands first.
void addCaption(const PropertyList::Dictionary& properties, std::vector<TiffEntry>& texts) {
    const auto* iptc = valueUnder<Section>(properties, "{IPTC}");
    const auto* caption = iptc ? valueUnder<std::string>(*iptc, "Caption/Abstract") : nullptr;
    const bool hasOther = !texts.empty() && texts.front().tag == descriptionTag;
    Data value;
    if (caption && !hasOther && appendEndedText(value, *caption, maximumTextLength))
        texts.insert(texts.begin(), entryOf(descriptionTag, TiffEntry::ascii, std::move(value)));
}

std::optional<int> orientationIn(const PropertyList::Dictionary* dictionary) {
    const std::optional<double> value =
        dictionary ? findNumber(*dictionary, "Orientation") : std::nullopt;
    for (int orientation = 1; orientation <= 8; ++orientation)
        if (value == orientation)
            return orientation;
    return std::nullopt;
}

} // namespace

StoredProperties storedProperties(const PropertyList::Dictionary& properties) {
    const auto* tiff = valueUnder<Section>(properties, "{TIFF}");
    StoredProperties result = {.orientation = orientationIn(&properties)};
    if (!result.orientation)
        result.orientation = orientationIn(tiff);
    if (tiff)
        result.texts = entriesOf(*tiff, tiffFields, maximumTextLength);
    if (const auto* exif = valueUnder<Section>(properties, "{Exif}"))
        result.exif = entriesOf(*exif, exifFields, maximumExifTextLength);
    if (const auto* gps = valueUnder<Section>(properties, "{GPS}"))
        result.gps = entriesOf(*gps, gpsFields, maximumExifTextLength);
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
    if (properties.orientation) {
        Data value;
        append(value, static_cast<std::uint64_t>(*properties.orientation), 2);
        first.push_back(entryOf(orientationTag, TiffEntry::shortNumber, std::move(value)));
    }
    return exifBlockOf(std::move(first), properties.exif, properties.gps, false);
}

} // namespace zorvan::imageio
