#include <zorvan/media/NSBundle.h>

#include <zorvan/platform/bundles/DesktopIcon.h>

namespace zorvan {

NSImage::Pointer applicationIcon(const NSBundle& bundle, std::int64_t size) {
    const std::optional<URL> url = desktop::iconOfBundle(bundle, size);
    const NSImage::Pointer icon = url ? NSImage::create(*url) : nullptr;
    if (icon)
        icon->setSize({static_cast<double>(size), static_cast<double>(size)});
    return icon;
}

} // namespace zorvan
