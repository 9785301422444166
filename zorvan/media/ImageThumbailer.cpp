#include <zorvan/media/ImageThumbailer.h>

#include <zorvan/media/CGImage.h>
#include <zorvan/media/ImageKeys.h>

#include <string>
#include <utility>

namespace zorvan {

PropertyList::Dictionary ImageThumbailer::coreImageDictionary() const {
    return {{std::string(kCGImageSourceShouldCache), false},
            {std::string(kCGImageSourceShouldAllowFloat), true},
            {std::string(kCGImageSourceCreateThumbnailWithTransform), applyExifTransform},
            {std::string(kCGImageSourceCreateThumbnailFromImageAlways), alwaysCreateImage},
            {std::string(kCGImageSourceThumbnailMaxPixelSize), maximumPixelSize}};
}

std::shared_ptr<const CGImage> ImageThumbailer::thumbnail(const URL& url) const {
    return CGImage::thumbnail(url, coreImageDictionary());
}

std::shared_ptr<const CGImage> ImageThumbailer::thumbnail(Data data) const {
    return CGImage::thumbnail(std::move(data), coreImageDictionary());
}

} // namespace zorvan
