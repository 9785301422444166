#include <zorvan/media/CGImage.h>

#include <zorvan/media/ImageKeys.h>
#include <zorvan/media/internal/parseDate.h>
#include <zorvan/platform/foundation/internal/ascii.h>
#include <zorvan/platform/foundation/internal/valueUnder.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <string>
#include <utility>

namespace zorvan {
namespace {

using internal::valueUnder;

std::optional<std::int64_t> integer(const PropertyList::Dictionary& metadata,
                                    std::string_view key) {
    const auto* number = valueUnder<NSNumber>(metadata, key);
    return number && number->isInteger() ? std::optional(number->int64Value()) : std::nullopt;
}

/// Whether width and height change places once the picture is turned upright.
bool swapsSides(const PropertyList::Dictionary& metadata) {
    const std::int64_t orientation = integer(metadata, kCGImagePropertyOrientation).value_or(0);
    return orientation >= 5 && orientation <= 8;
}

std::string textUnder(const PropertyList::Dictionary& exif, const std::string& key) {
    const auto* text = valueUnder<std::string>(exif, key);
    return text ? *text : std::string();
}

Date inZoneOfProcess(Date asUTC) {
    const auto whole = std::chrono::floor<std::chrono::seconds>(asUTC);
    const auto time = static_cast<std::time_t>(whole.time_since_epoch().count());
    std::tm parts{};
    gmtime_r(&time, &parts); // cannot fail: every date is within 300 years of 1970
    parts.tm_isdst = -1;
    return asUTC + std::chrono::seconds(std::mktime(&parts) - time);
}

/// A date, its fraction of a second and its time zone stand apart in Exif.
std::optional<Date> dateIn(const PropertyList::Dictionary& exif, const std::string& which) {
    std::string text = textUnder(exif, "DateTime" + which);
    const std::string fraction = textUnder(exif, "SubsecTime" + which);
    if (!fraction.empty() && std::all_of(fraction.begin(), fraction.end(), internal::isDigit))
        text += '.' + fraction;
    const std::string zone = textUnder(exif, "OffsetTime" + which);
    if (!zone.empty())
        if (const std::optional<Date> date = parseDate(text + zone))
            return date;
    const std::optional<Date> date = parseDate(text);
    return date ? std::optional(inZoneOfProcess(*date)) : std::nullopt;
}

/// Degrees without a sign and a letter for the half of the earth.
std::optional<double> coordinateIn(const PropertyList::Dictionary& gps, const std::string& key,
                                   char negative, double largest) {
    const auto* degrees = valueUnder<NSNumber>(gps, key);
    if (!degrees || !(std::abs(degrees->doubleValue()) <= largest))
        return std::nullopt;
    const auto* half = valueUnder<std::string>(gps, key + "Ref");
    const bool isNegative = half && half->starts_with(negative);
    return isNegative ? -degrees->doubleValue() : degrees->doubleValue();
}

void exchange(PropertyList::Dictionary& metadata, std::string_view first, std::string_view second) {
    const auto a = metadata.find(first), b = metadata.find(second);
    if (a != metadata.end() && b != metadata.end())
        std::swap(a->second, b->second);
}

} // namespace

std::optional<CGSize> CGImage::imageSize(const PropertyList::Dictionary& metadata) {
    const auto width = integer(metadata, kCGImagePropertyPixelWidth);
    const auto height = integer(metadata, kCGImagePropertyPixelHeight);
    if (!width || !height)
        return std::nullopt;
    return CGSize(static_cast<double>(*width), static_cast<double>(*height));
}

std::optional<CGSize> CGImage::imageSize(const std::optional<PropertyList::Dictionary>& metadata) {
    return metadata ? imageSize(*metadata) : std::nullopt;
}

std::optional<CGSize> CGImage::imageSize(const URL& url) { return imageSize(metadata(url)); }

std::optional<CGSize> CGImage::imageSize(Data data) { return imageSize(metadata(std::move(data))); }

std::optional<CGSize> CGImage::orientedImageSize(const PropertyList::Dictionary& metadata) {
    const std::optional<CGSize> size = imageSize(metadata);
    return size && swapsSides(metadata) ? size->flipped() : size;
}

std::optional<CGSize>
CGImage::orientedImageSize(const std::optional<PropertyList::Dictionary>& metadata) {
    return metadata ? orientedImageSize(*metadata) : std::nullopt;
}

std::optional<CGSize> CGImage::orientedImageSize(const URL& url) {
    return orientedImageSize(metadata(url));
}

std::optional<CGSize> CGImage::orientedImageSize(Data data) {
    return orientedImageSize(metadata(std::move(data)));
}

std::optional<Date> CGImage::creationDate(const PropertyList::Dictionary& metadata) {
    const auto* exif =
        valueUnder<PropertyList::Dictionary>(metadata, kCGImagePropertyExifDictionary);
    if (!exif)
        return std::nullopt;
    const std::optional<Date> taken = dateIn(*exif, "Original");
    return taken ? taken : dateIn(*exif, "Digitized");
}

std::optional<Date> CGImage::creationDate(const std::optional<PropertyList::Dictionary>& metadata) {
    return metadata ? creationDate(*metadata) : std::nullopt;
}

std::optional<Date> CGImage::creationDate(const URL& url) { return creationDate(metadata(url)); }

std::optional<Location> CGImage::location(const PropertyList::Dictionary& metadata) {
    const auto* gps = valueUnder<PropertyList::Dictionary>(metadata, kCGImagePropertyGPSDictionary);
    if (!gps)
        return std::nullopt;
    const std::optional<double> latitude = coordinateIn(*gps, "Latitude", 'S', 90);
    const std::optional<double> longitude = coordinateIn(*gps, "Longitude", 'W', 180);
    return latitude && longitude ? std::optional(Location{*latitude, *longitude}) : std::nullopt;
}

std::optional<Location> CGImage::location(const std::optional<PropertyList::Dictionary>& metadata) {
    return metadata ? location(*metadata) : std::nullopt;
}

std::optional<Location> CGImage::location(const URL& url) { return location(metadata(url)); }

PropertyList::Dictionary CGImage::uprightMetadata(PropertyList::Dictionary metadata) {
    if (swapsSides(metadata)) {
        exchange(metadata, kCGImagePropertyPixelWidth, kCGImagePropertyPixelHeight);
        exchange(metadata, "DPIWidth", "DPIHeight");
    }
    metadata.erase(kCGImagePropertyOrientation);
    const auto tiff = metadata.find(kCGImagePropertyTIFFDictionary);
    if (auto* section =
            tiff == metadata.end() ? nullptr : tiff->second.as<PropertyList::Dictionary>()) {
        section->erase(kCGImagePropertyOrientation);
        section->erase(kCGImagePropertyTIFFCompression);
    }
    return metadata;
}

} // namespace zorvan
