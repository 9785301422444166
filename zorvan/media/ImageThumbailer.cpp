#include <zorvan/media/ImageThumbailer.h>

#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageSource.h>
#include <zorvan/media/ImageKeys.h>

#include <utility>

namespace zorvan {

PropertyList::Dictionary ImageThumbailer::coreImageDictionary() const {
    return {{kCGImageSourceShouldCache, false},
            {kCGImageSourceShouldAllowFloat, true},
            {kCGImageSourceCreateThumbnailWithTransform, applyExifTransform},
            {kCGImageSourceCreateThumbnailFromImageAlways, alwaysCreateImage},
            {kCGImageSourceThumbnailMaxPixelSize, maximumPixelSize}};
}

std::shared_ptr<const CGImage> ImageThumbailer::thumbnail(const URL& url) const {
    const auto source = CGImageSource::create(url);
    return source ? thumbnail(*source) : nullptr;
}

std::shared_ptr<const CGImage> ImageThumbailer::thumbnail(Data data) const {
    return thumbnail(*CGImageSource::create(std::move(data)));
}

std::shared_ptr<const CGImage> ImageThumbailer::thumbnail(const CGImageSource& source,
                                                          std::int64_t index) const {
    return source.thumbnail(index, coreImageDictionary());
}

} // namespace zorvan
