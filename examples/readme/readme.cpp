#include <zorvan/files.h>
#include <zorvan/media.h>
using namespace zorvan;

int main(int, char** arguments) {
    const URL folder({.fileURLWithPath = arguments[1]}), thumbnails({.fileURLWithPath = arguments[2]});
    const auto photos = FileIterator::create({folder});
    photos->setAllowedTypes({{UTIType::image()}});
    for (const URL& photo : *photos)
        // Decoded at the small size, and upright however the camera was held; none of a broken file.
        if (const auto small = ImageThumbailer{.maximumPixelSize = 256}.thumbnail(photo))
            // "lake.png", or "lake (0).png" when there is one already; throws when it cannot be written.
            NSFileManager::defaultManager()->createAvailableFile(
                thumbnails.appendingPathComponent(lastPathTitle(photo) + ".png"), small->pngData().value());
}
