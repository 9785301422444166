#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageSource.h>
#include <zorvan/media/ImageKeys.h>

#include <utility>

namespace zorvan {
namespace {

const PropertyList::Dictionary& uncached() {
    static const PropertyList::Dictionary options{
        {std::string(kCGImageSourceShouldCache), NSNumber(false)}};
    return options;
}

const PropertyList::Dictionary& deepPixels() {
    static const PropertyList::Dictionary options{
        {std::string(kCGImageSourceShouldAllowFloat), NSNumber(true)}};
    return options;
}

CGImage::Pointer firstImage(const std::shared_ptr<CGImageSource>& source) {
    return source ? source->image(0) : nullptr;
}

CGImage::Pointer firstThumbnail(const std::shared_ptr<CGImageSource>& source,
                                const PropertyList::Dictionary& options) {
    return source ? source->thumbnail(0, options) : nullptr;
}

std::optional<PropertyList::Dictionary>
firstProperties(const std::shared_ptr<CGImageSource>& source) {
    return source ? source->properties(0, uncached()) : std::nullopt;
}

std::optional<std::int64_t> integer(const PropertyList::Dictionary& metadata,
                                    std::string_view key) {
    const auto entry = metadata.find(key);
    const NSNumber* const number = entry == metadata.end() ? nullptr : entry->second.as<NSNumber>();
    return number && number->isInteger() ? std::optional(number->int64Value()) : std::nullopt;
}

} // namespace

CGImage::Pointer CGImage::image(const URL& url) {
    return firstImage(CGImageSource::create(url, deepPixels()));
}

CGImage::Pointer CGImage::image(Data data) {
    return firstImage(CGImageSource::create(std::move(data), deepPixels()));
}

CGImage::Pointer CGImage::thumbnail(const URL& url, const PropertyList::Dictionary& options) {
    return firstThumbnail(CGImageSource::create(url), options);
}

CGImage::Pointer CGImage::thumbnail(Data data, const PropertyList::Dictionary& options) {
    return firstThumbnail(CGImageSource::create(std::move(data)), options);
}

std::optional<PropertyList::Dictionary> CGImage::metadata(const URL& url) {
    return firstProperties(CGImageSource::create(url, uncached()));
}

std::optional<PropertyList::Dictionary> CGImage::metadata(Data data) {
    return firstProperties(CGImageSource::create(std::move(data), uncached()));
}

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
    const std::int64_t orientation = integer(metadata, kCGImagePropertyOrientation).value_or(0);
    return size && orientation >= 5 && orientation <= 8 ? size->flipped() : size;
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

} // namespace zorvan
