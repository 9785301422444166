#pragma once

#include <zorvan/platform/foundation/Data.h>
#include <zorvan/platform/foundation/PropertyList.h>
#include <zorvan/platform/foundation/URL.h>

#include <cstdint>
#include <memory>

namespace zorvan {

class CGImage;
class CGImageSource;

/// How thumbnails are made: `ImageThumbailer{.maximumPixelSize = 256}.thumbnail(url)`.
struct ImageThumbailer {
    /// Turn the thumbnail by the picture's EXIF orientation.
    bool applyExifTransform = true;
    /// The longest side that a thumbnail may have, in pixels; a smaller picture is not enlarged.
    double maximumPixelSize = 1000000;
    /// Make the thumbnail from the picture even when the file holds one of its own. Without this, a
    /// file that holds none has no thumbnail.
    bool alwaysCreateImage = true;

    /// As options of `CGImageSource::thumbnail`.
    [[nodiscard]] PropertyList::Dictionary coreImageDictionary() const;

    /// The thumbnail of the first picture, decoded at the reduced size; empty when there is none.
    /// @{
    [[nodiscard]] std::shared_ptr<const CGImage> thumbnail(const URL& url) const;
    [[nodiscard]] std::shared_ptr<const CGImage> thumbnail(Data data) const;
    /// @}
    /// The thumbnail of a picture of the source, whose `error` says why there is none.
    [[nodiscard]] std::shared_ptr<const CGImage> thumbnail(const CGImageSource& source,
                                                           std::int64_t index = 0) const;

    friend constexpr bool operator==(const ImageThumbailer&, const ImageThumbailer&) = default;
};

} // namespace zorvan
