#include <zorvan/media/CGImageDestination.h>

#include <zorvan/media/CGImage.h>
#include <zorvan/media/ImageKeys.h>
#include <zorvan/platform/foundation/internal/valueUnder.h>
#include <zorvan/platform/foundation/internal/writeFile.h>
#include <zorvan/platform/imageio/ImageWriter.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace zorvan {
namespace {

using internal::valueUnder;

std::optional<imageio::FileFormat> formatOf(std::string_view type) {
    using enum imageio::FileFormat;
    for (const imageio::FileFormat format : {png, jpeg, tiff, heic})
        if (typeIdentifier(format) == type)
            return format;
    return std::nullopt;
}

std::optional<double> quality(const PropertyList::Dictionary& options) {
    const NSNumber* const value =
        valueUnder<NSNumber>(options, kCGImageDestinationLossyCompressionQuality);
    return value ? std::optional(value->doubleValue()) : std::nullopt;
}

std::optional<int> tiffCompression(const PropertyList::Dictionary& options) {
    const auto* const tiff =
        valueUnder<PropertyList::Dictionary>(options, kCGImagePropertyTIFFDictionary);
    const NSNumber* const code =
        tiff ? valueUnder<NSNumber>(*tiff, kCGImagePropertyTIFFCompression) : nullptr;
    if (!code)
        return std::nullopt;
    return static_cast<int>(
        std::clamp<std::int64_t>(code->int64Value(), 0, std::numeric_limits<std::uint16_t>::max()));
}

} // namespace

CGImageDestination::CGImageDestination(Key, Write write, std::string_view type, std::int64_t count,
                                       PropertyList::Dictionary options)
    : write_(std::move(write)), type_(type), count_(count), options_(std::move(options)) {}

bool CGImageDestination::supports(std::string_view type) {
    const auto format = formatOf(type);
    return format && imageio::canEncode(*format);
}

std::shared_ptr<CGImageDestination>
CGImageDestination::create(Write write, std::string_view type, std::int64_t count,
                           const PropertyList::Dictionary& options) {
    if (!supports(type) || count < 1)
        return nullptr;
    return std::make_shared<CGImageDestination>(Key{}, std::move(write), type, count, options);
}

std::shared_ptr<CGImageDestination>
CGImageDestination::create(const URL& url, std::string_view type, std::int64_t count,
                           const PropertyList::Dictionary& options) {
    if (!url.isFileURL())
        return nullptr;
    const auto write = [url](const Data& bytes) { return !internal::writeFile(url.path(), bytes); };
    return create(Write(write), type, count, options);
}

std::shared_ptr<CGImageDestination>
CGImageDestination::create(std::shared_ptr<Data> data, std::string_view type, std::int64_t count,
                           const PropertyList::Dictionary& options) {
    if (!data)
        return nullptr;
    const auto append = [data = std::move(data)](const Data& bytes) {
        data->insert(data->end(), bytes.begin(), bytes.end());
        return true;
    };
    return create(Write(append), type, count, options);
}

void CGImageDestination::setProperties(const PropertyList::Dictionary& properties) {
    properties_ = properties;
}

void CGImageDestination::addImage(std::shared_ptr<const CGImage> image,
                                  const PropertyList::Dictionary& options) {
    if (image && !isFinal_ && std::ssize(pictures_) < count_)
        pictures_.push_back({std::move(image), options});
}

bool CGImageDestination::finalize() {
    if (isFinal_)
        return false;
    isFinal_ = true;
    const std::optional<Data> bytes = std::ssize(pictures_) == count_ ? encoded() : std::nullopt;
    pictures_.clear();
    return bytes && write_(*bytes);
}

std::optional<Data> CGImageDestination::encoded() const {
    std::vector<imageio::Frame> frames;
    for (const Picture& picture : pictures_) {
        PropertyList::Dictionary options = picture.options;
        options.insert(properties_.begin(), properties_.end());
        options.insert(options_.begin(), options_.end());
        frames.push_back(
            {&picture.image->bitmap(), quality(options), tiffCompression(options), options});
    }
    return imageio::encode(*formatOf(type_), frames);
}

} // namespace zorvan
