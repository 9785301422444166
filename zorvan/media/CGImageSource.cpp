#include <zorvan/media/CGImageSource.h>

#include <zorvan/media/CGImage.h>
#include <zorvan/media/ImageKeys.h>
#include <zorvan/platform/foundation/internal/valueUnder.h>
#include <zorvan/platform/graphics/AreaDownscaler.h>
#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/imageio/ImageReader.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <utility>

namespace zorvan {
namespace {

bool isSet(const PropertyList::Dictionary& options, std::string_view key) {
    const auto* const value = internal::valueUnder<NSNumber>(options, key);
    return value && value->boolValue();
}

/// The longest side that is allowed, rounded down, but at least 1; 0 when it is not above 0.
std::int64_t longestSide(const PropertyList::Dictionary& options) {
    const auto* const limit =
        internal::valueUnder<NSNumber>(options, kCGImageSourceThumbnailMaxPixelSize);
    if (!limit)
        return std::numeric_limits<std::int64_t>::max();
    const double side = limit->doubleValue();
    return side > 0 ? std::max<std::int64_t>(1, NSNumber(side).int64Value()) : 0;
}

/// No larger than `longest` on the longer side, the aspect ratio kept; absent without memory.
std::optional<Bitmap> limited(Bitmap bitmap, std::int64_t longest) {
    const std::int64_t longer = std::max(bitmap.width(), bitmap.height());
    if (longer <= longest)
        return bitmap;
    const double scale = static_cast<double>(longest) / static_cast<double>(longer);
    const auto scaled = [&](std::int64_t side) {
        const double length = std::round(static_cast<double>(side) * scale);
        return std::max<std::int64_t>(1, static_cast<std::int64_t>(length));
    };
    std::optional<Bitmap> result =
        Bitmap::make(scaled(bitmap.width()), scaled(bitmap.height()), bitmap.layout());
    if (result)
        areaDownscale(bitmap, *result, {0, result->height()});
    return result;
}

class ReaderSource : public CGImageSource {
public:
    explicit ReaderSource(std::unique_ptr<imageio::ImageReader> reader)
        : reader_(std::move(reader)) {}

    std::optional<std::string> type() const override {
        const std::lock_guard lock(mutex_);
        const std::optional<imageio::FileFormat> format = reader_->format();
        return format ? std::optional(std::string(typeIdentifier(*format))) : std::nullopt;
    }

    std::int64_t count() const override {
        const std::lock_guard lock(mutex_);
        error_.clear();
        return reader_->count();
    }

    std::string error() const override {
        const std::lock_guard lock(mutex_);
        return error_.empty() ? reader_->error() : error_;
    }

    CGImage::Pointer image(std::int64_t index, const PropertyList::Dictionary&) const override {
        const std::lock_guard lock(mutex_);
        error_.clear();
        return imageOf(reader_->decode(index, {}));
    }

    std::optional<PropertyList::Dictionary>
    properties(std::int64_t index, const PropertyList::Dictionary&) const override {
        const std::lock_guard lock(mutex_);
        error_.clear();
        return reader_->properties(index);
    }

    CGImage::Pointer thumbnail(std::int64_t index,
                               const PropertyList::Dictionary& options) const override {
        const std::lock_guard lock(mutex_);
        error_.clear();
        const std::int64_t longest = longestSide(options);
        if (longest < 1) {
            error_ = "a thumbnail of no size was asked for";
            return nullptr;
        }
        std::optional<Bitmap> bitmap = small(index, longest, options);
        if (bitmap && isSet(options, kCGImageSourceCreateThumbnailWithTransform))
            bitmap = upright(index, std::move(*bitmap));
        return imageOf(std::move(bitmap));
    }

private:
    static CGImage::Pointer imageOf(std::optional<Bitmap> bitmap) {
        return bitmap ? CGImage::create(std::move(*bitmap)) : nullptr;
    }

    std::optional<Bitmap> small(std::int64_t index, std::int64_t longest,
                                const PropertyList::Dictionary& options) const {
        if (!isSet(options, kCGImageSourceCreateThumbnailFromImageAlways)) {
            if (std::optional<Bitmap> own = reader_->embeddedThumbnail(index))
                return checked(limited(std::move(*own), longest));
            if (!isSet(options, kCGImageSourceCreateThumbnailFromImageIfAbsent))
                return std::nullopt;
        }
        return reader_->decode(index, {.maximumPixelSize = longest});
    }

    std::optional<Bitmap> upright(std::int64_t index, Bitmap bitmap) const {
        const int exifValue = reader_->orientation(index).value_or(1);
        return exifValue == 1 ? std::optional(std::move(bitmap))
                              : checked(oriented(bitmap, exifValue));
    }

    std::optional<Bitmap> checked(std::optional<Bitmap> made) const {
        if (!made)
            error_ = "there is not enough memory";
        return made;
    }

    mutable std::mutex mutex_;
    /// Of what is done here; else it is the reader that failed.
    mutable std::string error_;
    std::unique_ptr<imageio::ImageReader> reader_;
};

} // namespace

std::shared_ptr<CGImageSource> CGImageSource::create(const URL& url,
                                                     const PropertyList::Dictionary&) {
    if (!url.isFileURL())
        return nullptr;
    return std::make_shared<ReaderSource>(imageio::ImageReader::open(url.path()));
}

std::shared_ptr<CGImageSource> CGImageSource::create(Data data, const PropertyList::Dictionary&) {
    return std::make_shared<ReaderSource>(imageio::ImageReader::open(std::move(data)));
}

} // namespace zorvan
