#include <zorvan/media/CGImage.h>

#include <zorvan/media/CGImageDestination.h>
#include <zorvan/media/CGImageSource.h>
#include <zorvan/platform/imageio/ImageWriter.h>

#include <utility>

namespace zorvan {

CGImage::Pointer CGImage::create(Bitmap bitmap) {
    return create(std::make_shared<const Bitmap>(std::move(bitmap)));
}

CGImage::Pointer CGImage::create(std::shared_ptr<const Bitmap> bitmap) {
    return std::make_shared<const CGImage>(Key{}, std::move(bitmap));
}

CGSize CGImage::size() const noexcept {
    return {static_cast<double>(width()), static_cast<double>(height())};
}

CGRect CGImage::rect() const noexcept { return {CGPoint(), size()}; }

CGImage::Pointer CGImage::image(const URL& url) {
    const auto source = CGImageSource::create(url);
    return source ? source->image(0) : nullptr;
}

CGImage::Pointer CGImage::image(Data data) {
    return CGImageSource::create(std::move(data))->image(0);
}

CGImage::Pointer CGImage::thumbnail(const URL& url, const PropertyList::Dictionary& options) {
    const auto source = CGImageSource::create(url);
    return source ? source->thumbnail(0, options) : nullptr;
}

CGImage::Pointer CGImage::thumbnail(Data data, const PropertyList::Dictionary& options) {
    return CGImageSource::create(std::move(data))->thumbnail(0, options);
}

std::optional<PropertyList::Dictionary> CGImage::metadata(const URL& url) {
    const auto source = CGImageSource::create(url);
    return source ? source->properties(0) : std::nullopt;
}

std::optional<PropertyList::Dictionary> CGImage::metadata(Data data) {
    return CGImageSource::create(std::move(data))->properties(0);
}

std::optional<Data> CGImage::data(ImageExportFormat format) const {
    switch (format) {
    case ImageExportFormat::Case::jpg:
        return jpegData(1);
    case ImageExportFormat::Case::tiff:
        return tiffData();
    default:
        return data(format, {});
    }
}

std::optional<Data> CGImage::data(ImageExportFormat format,
                                  const PropertyList::Dictionary& options) const {
    const auto bytes = std::make_shared<Data>();
    const auto destination = CGImageDestination::create(bytes, format.cgType(), 1, options);
    if (!destination)
        return std::nullopt;
    destination->addImage(shared_from_this(), options);
    return destination->finalize() ? std::optional(std::move(*bytes)) : std::nullopt;
}

std::optional<Data> CGImage::jpegData(double quality) const {
    const imageio::Frame frame = {.bitmap = bitmap_.get(), .quality = quality};
    return imageio::encode(imageio::FileFormat::jpeg, {&frame, 1});
}

std::optional<Data> CGImage::pngData() const { return data(ImageExportFormat::png, {}); }

std::optional<Data> CGImage::heicData() const { return data(ImageExportFormat::heic, {}); }

std::optional<Data> CGImage::tiffData() const {
    constexpr int lzw = 5;
    const imageio::Frame frame = {.bitmap = bitmap_.get(), .tiffCompression = lzw};
    return imageio::encode(imageio::FileFormat::tiff, {&frame, 1});
}

} // namespace zorvan
