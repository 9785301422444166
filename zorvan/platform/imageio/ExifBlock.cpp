#include <zorvan/platform/imageio/internal/ExifBlock.h>

#include <zorvan/platform/foundation/internal/Release.h>
#include <zorvan/platform/foundation/internal/UTF16.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/valueUnder.h>

#include <libexif/exif-data.h>
#include <libexif/exif-utils.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace zorvan::imageio {
namespace {

constexpr std::string_view signature("Exif\0\0", 6);
constexpr std::size_t maximumValues = 256;

using Parsed = std::unique_ptr<ExifData, Release<exif_data_unref>>;

Parsed parse(Bytes block) {
    const Data whole = withExifSignature(block);
    Parsed data(exif_data_new());
    if (!data)
        throw std::bad_alloc();
    // Otherwise the library adds tags that the file does not have.
    exif_data_unset_option(data.get(), EXIF_DATA_OPTION_FOLLOW_SPECIFICATION);
    exif_data_load_data(data.get(), reinterpret_cast<const unsigned char*>(whole.data()),
                        static_cast<unsigned int>(whole.size()));
    return data;
}

double ratio(double numerator, double denominator) {
    return denominator == 0 ? 0 : numerator / denominator;
}

class EntryReader {
public:
    EntryReader(const ExifEntry& entry, ExifByteOrder order) : entry_(entry), order_(order) {
        const std::size_t size = exif_format_get_size(entry.format);
        if (entry.data && size > 0)
            count_ = std::min({std::size_t{entry.components}, entry.size / size, maximumValues});
    }

    std::size_t count() const { return count_; }
    ExifByteOrder order() const { return order_; }

    bool isReal() const {
        return entry_.format == EXIF_FORMAT_RATIONAL || entry_.format == EXIF_FORMAT_SRATIONAL;
    }

    std::int64_t integer(std::size_t i) const {
        switch (entry_.format) {
        case EXIF_FORMAT_BYTE:
        case EXIF_FORMAT_UNDEFINED:
            return entry_.data[i];
        case EXIF_FORMAT_SBYTE:
            return static_cast<signed char>(entry_.data[i]);
        case EXIF_FORMAT_SHORT:
            return exif_get_short(entry_.data + 2 * i, order_);
        case EXIF_FORMAT_SSHORT:
            return exif_get_sshort(entry_.data + 2 * i, order_);
        case EXIF_FORMAT_LONG:
            return exif_get_long(entry_.data + 4 * i, order_);
        case EXIF_FORMAT_SLONG:
            return exif_get_slong(entry_.data + 4 * i, order_);
        default:
            return 0;
        }
    }

    double real(std::size_t i) const {
        if (entry_.format == EXIF_FORMAT_RATIONAL) {
            const ExifRational value = exif_get_rational(entry_.data + 8 * i, order_);
            return ratio(value.numerator, value.denominator);
        }
        if (entry_.format == EXIF_FORMAT_SRATIONAL) {
            const ExifSRational value = exif_get_srational(entry_.data + 8 * i, order_);
            return ratio(value.numerator, value.denominator);
        }
        return static_cast<double>(integer(i));
    }

    std::string_view bytes() const {
        return {reinterpret_cast<const char*>(entry_.data), entry_.data ? entry_.size : 0};
    }

    /// The value as the file has it; absent when it is empty or of a kind not shown.
    std::optional<PropertyList> value() const {
        if (entry_.format == EXIF_FORMAT_ASCII)
            return PropertyList(textFrom(bytes()));
        if (count_ == 0 || entry_.format == EXIF_FORMAT_FLOAT ||
            entry_.format == EXIF_FORMAT_DOUBLE)
            return std::nullopt;
        if (count_ == 1)
            return single(0);
        PropertyList::Array values;
        for (std::size_t i = 0; i < count_; ++i)
            values.push_back(single(i));
        return PropertyList(std::move(values));
    }

private:
    PropertyList single(std::size_t i) const {
        return isReal() ? PropertyList(real(i)) : PropertyList(integer(i));
    }

    const ExifEntry& entry_;
    ExifByteOrder order_;
    std::size_t count_ = 0;
};

/// "0231" as [2, 3, 1], "0220" as [2, 2].
std::optional<PropertyList> versionFrom(std::string_view digits) {
    if (digits.size() != 4 || !std::all_of(digits.begin(), digits.end(), internal::isDigit))
        return std::nullopt;
    PropertyList::Array result;
    const int major = (digits[0] - '0') * 10 + digits[1] - '0';
    result.push_back(major);
    result.push_back(digits[2] - '0');
    if (digits[3] != '0')
        result.push_back(digits[3] - '0');
    return PropertyList(std::move(result));
}

/// In the byte order of the block, unless it begins with a mark of its own.
std::string fromUTF16(Bytes bytes, bool isBigEndian) {
    const std::uint16_t mark = big16(bytes, 0);
    const bool hasMark = mark == 0xFEFF || mark == 0xFFFE;
    const Bytes units = bytes.subspan(hasMark ? 2 : 0);
    return internal::utf8FromUTF16(units.size() / 2, [&](std::size_t i) {
        return static_cast<char32_t>(
            numberAt(units, 2 * i, 2, hasMark ? mark == 0xFEFF : isBigEndian));
    });
}

std::optional<PropertyList> commentFrom(std::string_view bytes, ExifByteOrder order) {
    constexpr std::size_t codeLength = 8;
    const std::string_view code = bytes.substr(0, codeLength);
    const bool isPlain =
        code.starts_with("ASCII") || code == std::string_view("\0\0\0\0\0\0\0\0", 8);
    const bool isUTF16 = code.starts_with("UNICODE");
    if (bytes.size() <= codeLength || !(isPlain || isUTF16))
        return std::nullopt;
    const std::string_view rest = bytes.substr(codeLength);
    std::string text = textFrom(
        isUTF16 ? fromUTF16(std::as_bytes(std::span(rest)), order == EXIF_BYTE_ORDER_MOTOROLA)
                : rest);
    return text.empty() ? std::nullopt : std::optional<PropertyList>(std::move(text));
}

/// Farther than any other number stands for infinity.
double distanceFrom(const ExifEntry& entry, ExifByteOrder order) {
    const ExifRational value = exif_get_rational(entry.data, order);
    const bool isInfinite = value.numerator == std::numeric_limits<std::uint32_t>::max() ||
                            (value.numerator > 0 && value.denominator == 0);
    return isInfinite ? std::numeric_limits<double>::infinity()
                      : ratio(value.numerator, value.denominator);
}

std::optional<PropertyList> exifValue(const ExifEntry& entry, const EntryReader& reader) {
    switch (static_cast<int>(entry.tag)) {
    case EXIF_TAG_MAKER_NOTE:
    case EXIF_TAG_INTEROPERABILITY_IFD_POINTER:
        return std::nullopt;
    case EXIF_TAG_EXIF_VERSION:
    case EXIF_TAG_FLASH_PIX_VERSION:
        return versionFrom(reader.bytes());
    case EXIF_TAG_USER_COMMENT:
        return commentFrom(reader.bytes(), reader.order());
    case EXIF_TAG_SUBJECT_DISTANCE:
        return reader.count() == 1 && entry.format == EXIF_FORMAT_RATIONAL
                   ? PropertyList(distanceFrom(entry, reader.order()))
                   : reader.value();
    case EXIF_TAG_ISO_SPEED_RATINGS: {
        PropertyList::Array ratings;
        for (std::size_t i = 0; i < reader.count(); ++i)
            ratings.push_back(reader.integer(i));
        return PropertyList(std::move(ratings));
    }
    default:
        return reader.value();
    }
}

/// Degrees, minutes and seconds as degrees.
std::optional<PropertyList> degreesFrom(const EntryReader& reader) {
    if (reader.count() != 3 || !reader.isReal())
        return std::nullopt;
    return PropertyList(reader.real(0) + reader.real(1) / 60 + reader.real(2) / 3600);
}

std::optional<PropertyList> timeFrom(const EntryReader& reader) {
    if (reader.count() != 3 || !reader.isReal())
        return std::nullopt;
    const auto part = [&](std::size_t i) {
        return static_cast<int>(std::clamp(reader.real(i), 0.0, 99.0));
    };
    std::array<char, 16> text;
    std::snprintf(text.data(), text.size(), "%02d:%02d:%02d", part(0), part(1), part(2));
    return PropertyList(std::string(text.data()));
}

std::optional<PropertyList> gpsValue(std::string_view name, const EntryReader& reader) {
    if (name == "Latitude" || name == "Longitude" || name == "DestLatitude" ||
        name == "DestLongitude")
        return degreesFrom(reader);
    if (name == "TimeStamp")
        return timeFrom(reader);
    return reader.value();
}

std::string_view keyFor(std::string_view name, ExifIfd directory) {
    if (directory == EXIF_IFD_GPS) {
        if (name == "GPSVersionID")
            return "GPSVersion";
        return name.starts_with("GPS") ? name.substr(3) : name;
    }
    constexpr std::array<std::pair<std::string_view, std::string_view>, 4> otherNames = {{
        {"SubSecTime", "SubsecTime"},
        {"FlashpixVersion", "FlashPixVersion"},
        {"SubSecTimeOriginal", "SubsecTimeOriginal"},
        {"SubSecTimeDigitized", "SubsecTimeDigitized"},
    }};
    for (const auto& [theirs, ours] : otherNames)
        if (name == theirs)
            return ours;
    return name;
}

bool isPointer(const ExifEntry& entry, ExifIfd directory) {
    return directory == EXIF_IFD_0 &&
           (entry.tag == EXIF_TAG_EXIF_IFD_POINTER || entry.tag == EXIF_TAG_GPS_INFO_IFD_POINTER);
}

void addDirectory(const ExifData& data, ExifIfd directory, ExifByteOrder order,
                  PropertyList::Dictionary& into) {
    const ExifContent* content = data.ifd[directory];
    for (unsigned i = 0; content && i < content->count; ++i) {
        const ExifEntry& entry = *content->entries[i];
        const char* name = exif_tag_get_name_in_ifd(entry.tag, directory);
        if (!name || isPointer(entry, directory))
            continue;
        const std::string_view key = keyFor(name, directory);
        const EntryReader reader(entry, order);
        std::optional<PropertyList> value = directory == EXIF_IFD_GPS    ? gpsValue(key, reader)
                                            : directory == EXIF_IFD_EXIF ? exifValue(entry, reader)
                                                                         : reader.value();
        if (value)
            into.insert_or_assign(std::string(key), std::move(*value));
    }
}

/// Numbers of a TIFF structure, in its own byte order.
class TiffNumbers {
public:
    explicit TiffNumbers(Bytes block) noexcept
        : block_(block), isBigEndian_(big16(block, 0) == 0x4D4D) {}
    bool valid() const noexcept {
        return (isBigEndian_ || big16(block_, 0) == 0x4949) && at(2, 2) == 42;
    }
    std::uint32_t at(std::size_t offset, std::size_t width) const noexcept {
        return static_cast<std::uint32_t>(numberAt(block_, offset, width, isBigEndian_));
    }

private:
    Bytes block_;
    bool isBigEndian_;
};

} // namespace

std::optional<int> exifOrientation(Bytes block) noexcept {
    const TiffNumbers numbers(block);
    if (!numbers.valid())
        return std::nullopt;
    const std::size_t directory = numbers.at(4, 4);
    const std::uint32_t count = numbers.at(directory, 2);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::size_t entry = directory + 2 + std::size_t{12} * i;
        if (entry + 12 > block.size())
            break;
        if (numbers.at(entry, 2) != EXIF_TAG_ORIENTATION)
            continue;
        const std::uint32_t type = numbers.at(entry + 2, 2);
        const std::uint32_t value = type == TiffEntry::shortNumber  ? numbers.at(entry + 8, 2)
                                    : type == TiffEntry::longNumber ? numbers.at(entry + 8, 4)
                                                                    : 0;
        if (value >= 1 && value <= 8)
            return static_cast<int>(value);
        break;
    }
    return std::nullopt;
}

void addExifProperties(Bytes block, PropertyList::Dictionary& properties) {
    if (!TiffNumbers(block).valid())
        return;
    const Parsed data = parse(block);
    const ExifByteOrder order = exif_data_get_byte_order(data.get());
    constexpr std::array<std::pair<ExifIfd, std::string_view>, 3> directories = {{
        {EXIF_IFD_0, "{TIFF}"},
        {EXIF_IFD_EXIF, "{Exif}"},
        {EXIF_IFD_GPS, "{GPS}"},
    }};
    for (const auto& [directory, name] : directories) {
        PropertyList::Dictionary entries;
        addDirectory(*data, directory, order, entries);
        if (!entries.empty())
            section(properties, name).merge(entries);
    }
}

PropertyList::Dictionary propertiesOf(Outline outline, Bytes exif,
                                      PropertyList::Dictionary sections) {
    addExifProperties(exif, sections);
    const auto* tiff = internal::valueUnder<PropertyList::Dictionary>(sections, "{TIFF}");
    if (tiff && !outline.dpi)
        outline.dpi = resolutionIn(*tiff);
    if (tiff && outline.orientation)
        section(sections, "{TIFF}").insert_or_assign("Orientation", *outline.orientation);
    PropertyList::Dictionary result = propertiesOf(outline);
    result.merge(sections);
    return result;
}

Data exifBlockFrom(ByteSource& source, const TiffForm& form, const ExifPlaces& places) {
    // Larger blocks are not read to their end.
    constexpr std::size_t maximumSize = 60'000;
    std::size_t room = maximumSize;
    const auto shown = [&](std::uint64_t place) {
        std::vector<TiffEntry> entries;
        if (place == 0)
            return entries;
        for (TiffEntry& entry : readTiffEntries(source, form, place)) {
            const std::size_t size = 12 + entry.value.size() + 1;
            if (entry.tag == EXIF_TAG_MAKER_NOTE || size > room ||
                entry.tag == EXIF_TAG_INTEROPERABILITY_IFD_POINTER)
                continue;
            room -= size;
            entries.push_back(std::move(entry));
        }
        return entries;
    };
    const std::vector<TiffEntry> exif = shown(places.exif);
    return exifBlockOf({}, exif, shown(places.gps), form.bigEndian);
}

Data exifThumbnail(Bytes block) {
    if (!TiffNumbers(block).valid())
        return {};
    const Parsed data = parse(block);
    if (!data->data || data->size == 0)
        return {};
    const auto* first = reinterpret_cast<const std::byte*>(data->data);
    return Data(first, first + data->size);
}

std::optional<Outline::Resolution> resolutionIn(const PropertyList::Dictionary& tiff) {
    constexpr double inch = 2, centimetre = 3;
    const std::optional<double> x = findNumber(tiff, "XResolution");
    const std::optional<double> y = findNumber(tiff, "YResolution");
    const double unit = findNumber(tiff, "ResolutionUnit").value_or(inch);
    if (!x || !y || *x <= 0 || *y <= 0 || (unit != inch && unit != centimetre))
        return std::nullopt;
    const double perInch = unit == centimetre ? 2.54 : 1;
    return Outline::Resolution{*x * perInch, *y * perInch};
}

Data withExifSignature(Bytes block) {
    const Bytes head = std::as_bytes(std::span(signature));
    Data result(head.size() + block.size());
    std::copy(block.begin(), block.end(), std::copy(head.begin(), head.end(), result.begin()));
    return result;
}

Bytes withoutExifSignature(Bytes block) noexcept {
    return textOf(block).starts_with(signature) ? block.subspan(signature.size()) : block;
}

Bytes exifInBox(Bytes box) noexcept {
    const std::uint64_t skipped = 4 + std::uint64_t{big32(box, 0)};
    return skipped < box.size() ? withoutExifSignature(box.subspan(skipped)) : Bytes();
}

} // namespace zorvan::imageio
