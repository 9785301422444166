#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageSource.h>
#include <zorvan/media/ImageKeys.h>

#include <utility>

namespace zorvan {
namespace {

CGImage::Pointer firstImage(const std::shared_ptr<CGImageSource>& source) {
    return source ? source->image(0) : nullptr;
}

CGImage::Pointer firstThumbnail(const std::shared_ptr<CGImageSource>& source,
                                const PropertyList::Dictionary& options) {
    return source ? source->thumbnail(0, options) : nullptr;
}

std::optional<PropertyList::Dictionary>
firstProperties(const std::shared_ptr<CGImageSource>& source) {
    return source ? source->properties(0) : std::nullopt;
}

} // namespace

CGImage::Pointer CGImage::image(const URL& url) { return firstImage(CGImageSource::create(url)); }

CGImage::Pointer CGImage::image(Data data) {
    return firstImage(CGImageSource::create(std::move(data)));
}

CGImage::Pointer CGImage::thumbnail(const URL& url, const PropertyList::Dictionary& options) {
    return firstThumbnail(CGImageSource::create(url), options);
}

CGImage::Pointer CGImage::thumbnail(Data data, const PropertyList::Dictionary& options) {
    return firstThumbnail(CGImageSource::create(std::move(data)), options);
}

std::optional<PropertyList::Dictionary> CGImage::metadata(const URL& url) {
    return firstProperties(CGImageSource::create(url));
}

std::optional<PropertyList::Dictionary> CGImage::metadata(Data data) {
    return firstProperties(CGImageSource::create(std::move(data)));
}

} // namespace zorvan
