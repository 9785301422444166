#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageDestination.h>
#include <zorvan/media/ImageKeys.h>

#include <string>
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
    return data(ImageExportFormat::jpg,
                {{std::string(kCGImageDestinationLossyCompressionQuality), quality}});
}

std::optional<Data> CGImage::pngData() const { return data(ImageExportFormat::png, {}); }

std::optional<Data> CGImage::heicData() const { return data(ImageExportFormat::heic, {}); }

std::optional<Data> CGImage::tiffData() const {
    constexpr int lzw = 5;
    const PropertyList::Dictionary tiff{{std::string(kCGImagePropertyTIFFCompression), lzw}};
    return data(ImageExportFormat::tiff, {{std::string(kCGImagePropertyTIFFDictionary), tiff}});
}

} // namespace zorvan
