#include <zorvan/interface/internal/resolveImage.h>

namespace zorvan {

namespace {

/// An image that carries a name is shared by all who use the name, so that its size is left alone.
std::shared_ptr<NSImage> ownCopy(const std::shared_ptr<NSImage>& shared) {
    const auto copy = NSImage::create(shared->size(), false,
                                      [shared](const CGRect& rect) { shared->draw(rect); });
    copy->setTemplate(shared->isTemplate());
    copy->setAccessibilityDescription(shared->accessibilityDescription());
    return copy;
}

} // namespace

std::shared_ptr<NSImage> resolveImage(const std::string& name, const std::optional<CGSize>& size) {
    std::shared_ptr<NSImage> image = NSImage::systemSymbol(name, name);
    if (!image)
        image = NSImage::named(name);
    if (image && !image->name().empty())
        image = ownCopy(image);
    if (image && size)
        image->setSize(*size);
    return image;
}

} // namespace zorvan
