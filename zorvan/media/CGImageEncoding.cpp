#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageDestination.h>
#include <zorvan/platform/imageio/ImageWriter.h>

#include <memory>
#include <utility>

namespace zorvan {

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
