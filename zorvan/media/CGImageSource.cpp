#include <zorvan/media/CGImageSource.h>

#include <zorvan/media/CGImage.h>
#include <zorvan/media/ImageKeys.h>
#include <zorvan/platform/graphics/ExactTransforms.h>
#include <zorvan/platform/graphics/drawBitmap.h>
#include <zorvan/platform/imageio/ImageReader.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <utility>

namespace zorvan {
namespace {

const NSNumber* number(const PropertyList::Dictionary& options, std::string_view key) {
    const auto entry = options.find(key);
    return entry == options.end() ? nullptr : entry->second.as<NSNumber>();
}

bool isSet(const PropertyList::Dictionary& options, std::string_view key) {
    const NSNumber* const value = number(options, key);
    return value && value->boolValue();
}

/// The longest side allowed; absent when none is.
std::optional<std::int64_t> longestSide(const PropertyList::Dictionary& options) {
    const NSNumber* const limit = number(options, kCGImageSourceThumbnailMaxPixelSize);
    if (!limit)
        return std::numeric_limits<std::int64_t>::max();
    if (!(limit->doubleValue() > 0))
        return std::nullopt;
    return std::max<std::int64_t>(1, limit->int64Value());
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
    if (!result)
        return result;
    const CGAffineTransform shrink(
        static_cast<double>(result->width()) / static_cast<double>(bitmap.width()), 0, 0,
        static_cast<double>(result->height()) / static_cast<double>(bitmap.height()), 0, 0);
    drawBitmap(bitmap, shrink, *result, Backdrop::transparent);
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
        return reader_->count();
    }

    std::string error() const override {
        const std::lock_guard lock(mutex_);
        return std::string(reader_->error());
    }

    CGImage::Pointer image(std::int64_t index, const PropertyList::Dictionary&) const override {
        const std::lock_guard lock(mutex_);
        return imageOf(isPicture(index) ? reader_->decode(index, {}) : std::nullopt);
    }

    CGImage::Pointer thumbnail(std::int64_t index,
                               const PropertyList::Dictionary& options) const override {
        const std::lock_guard lock(mutex_);
        const std::optional<std::int64_t> longest = longestSide(options);
        if (!longest || !isPicture(index))
            return nullptr;
        std::optional<Bitmap> bitmap = small(index, *longest, options);
        if (bitmap && isSet(options, kCGImageSourceCreateThumbnailWithTransform))
            bitmap = upright(index, std::move(*bitmap));
        return imageOf(std::move(bitmap));
    }

    std::optional<PropertyList::Dictionary>
    properties(std::int64_t index, const PropertyList::Dictionary&) const override {
        const std::lock_guard lock(mutex_);
        return isPicture(index) ? reader_->properties(index) : std::nullopt;
    }

private:
    bool isPicture(std::int64_t index) const { return index >= 0 && index < reader_->count(); }

    static CGImage::Pointer imageOf(std::optional<Bitmap> bitmap) {
        return bitmap ? CGImage::create(std::move(*bitmap)) : nullptr;
    }

    std::optional<Bitmap> small(std::int64_t index, std::int64_t longest,
                                const PropertyList::Dictionary& options) const {
        if (!isSet(options, kCGImageSourceCreateThumbnailFromImageAlways)) {
            if (std::optional<Bitmap> own = reader_->embeddedThumbnail(index))
                return limited(std::move(*own), longest);
            if (!isSet(options, kCGImageSourceCreateThumbnailFromImageIfAbsent))
                return std::nullopt;
        }
        return reader_->decode(index, {.maximumPixelSize = longest});
    }

    std::optional<Bitmap> upright(std::int64_t index, Bitmap bitmap) const {
        const auto properties = reader_->properties(index);
        const NSNumber* const value =
            properties ? number(*properties, kCGImagePropertyOrientation) : nullptr;
        const std::int64_t exifValue = value ? value->int64Value() : 1;
        if (exifValue < 2 || exifValue > 8)
            return bitmap;
        return oriented(bitmap, exifValue);
    }

    mutable std::mutex mutex_;
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
