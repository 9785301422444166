#include <zorvan/interface/NSImage.h>

#include <zorvan/media/CGRect.h>
#include <zorvan/media/NSColor.h>

namespace zorvan {

std::shared_ptr<const NSImage> tintedImage(const NSImage& image, const NSColor& with,
                                           double scale) {
    const std::shared_ptr<const NSImage> source = image.shared_from_this();
    if (source->size() == CGSize())
        return source;
    const auto tinted =
        NSImage::create(source->size() * scale, false, [source, with](const CGRect& rect) {
            source->draw(rect);
            setFill(with);
            fill(rect, NSCompositingOperation::sourceAtop);
        });
    tinted->setTemplate(false);
    const CGRect alignment = source->alignmentRect();
    tinted->setAlignmentRect({alignment.origin * scale, alignment.size * scale});
    return tinted;
}

} // namespace zorvan
