// A photo of a telephone as an upright JPEG
//
// Turned as the camera was held, with date and place kept.
//
// Link Zorvan::Media.

#include <zorvan/media/CGImage.h>
#include <zorvan/media/CGImageDestination.h>
#include <zorvan/media/ImageExportFormat.h>
#include <zorvan/media/ImageKeys.h>
#include <zorvan/media/ImageThumbailer.h>

#include <iostream>

using namespace zorvan;

int main() {
    const URL photo({.fileURLWithPath = "samples/irot.heic"});
    const URL copy({.fileURLWithPath = "photo.jpg"});
    const CGImage::Pointer upright = ImageThumbailer{.maximumPixelSize = 200}.thumbnail(photo);
    const auto metadata = CGImage::metadata(photo);
    if (!upright || !metadata)
        return 1;
    PropertyList::Dictionary options = CGImage::uprightMetadata(*metadata);
    options.insert_or_assign(kCGImageDestinationLossyCompressionQuality, 0.8);
    const auto file = CGImageDestination::create(copy, ImageExportFormat::jpg.cgType(), 1);
    file->addImage(upright, options);
    if (!file->finalize())
        return 1;
    std::cout << CGImage::orientedImageSize(copy)->roundIntDesc() << '\n';
}
