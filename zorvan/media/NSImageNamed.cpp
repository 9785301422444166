#include <zorvan/media/NSImage.h>

#include <zorvan/platform/bundles/DesktopIcon.h>
#include <zorvan/platform/bundles/NSBundle.h>
#include <zorvan/platform/foundation/internal/ForkParticipant.h>

#include <map>
#include <mutex>

namespace zorvan {

namespace {

constinit internal::BriefMutex mutex;
const internal::ForkParticipant::Joined joined(mutex);

/// The images that carry names.
class NameRegistry {
public:
    static NameRegistry& shared() {
        const std::lock_guard lock(mutex);
        static NameRegistry registry;
        return registry;
    }

    NSImage::Pointer image(std::string_view name) {
        const std::lock_guard lock(mutex);
        const auto found = images_.find(name);
        return found == images_.end() ? nullptr : found->second;
    }

    std::string name(const NSImage* image) {
        const std::lock_guard lock(mutex);
        for (const auto& [name, named] : images_)
            if (named.get() == image)
                return name;
        return {};
    }

    bool setName(const NSImage::Pointer& image, std::string name) {
        const std::lock_guard lock(mutex);
        const auto found = images_.find(name);
        if (found != images_.end())
            return found->second == image;
        std::erase_if(images_, [&](const auto& entry) { return entry.second == image; });
        if (!name.empty())
            images_.emplace(std::move(name), image);
        return true;
    }

private:
    std::map<std::string, NSImage::Pointer, std::less<>> images_;
};

/// Shapes have no bitmap to add: they are drawn anew at any size.
void addBitmap(NSImage& image, const std::optional<URL>& url) {
    const NSImage::Pointer larger = url ? NSImage::create(*url) : nullptr;
    if (larger && !larger->representations().empty())
        image.addRepresentation({larger->representations().front().image, image.size()});
}

void addScaled(NSImage& image, std::string_view name, std::string_view extension, int scale) {
    const std::string scaled = std::string(name) + '@' + std::to_string(scale) + 'x';
    addBitmap(image, NSBundle::mainBundle()->URLForResource(scaled, extension));
}

NSImage::Pointer resource(std::string_view name, std::string_view extension) {
    const auto url = NSBundle::mainBundle()->URLForResource(name, extension);
    NSImage::Pointer image = url ? NSImage::create(*url) : nullptr;
    if (image)
        for (const int scale : {2, 3})
            addScaled(*image, name, extension, scale);
    return image;
}

NSImage::Pointer resource(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    if (dot != std::string_view::npos && dot > 0)
        if (const auto image = resource(name.substr(0, dot), name.substr(dot + 1)))
            return image;
    for (const char* extension : {"png", "jpg", "jpeg", "tiff", "tif", "heic", "svg"})
        if (const auto image = resource(name, extension))
            return image;
    return nullptr;
}

/// With the picture that the theme has for two pixels to a point, when that is another one.
NSImage::Pointer iconNamed(std::string_view name, std::int64_t size) {
    const std::optional<URL> url = desktop::iconNamed(name, size);
    const NSImage::Pointer icon = url ? NSImage::create(*url) : nullptr;
    if (!icon)
        return nullptr;
    const auto side = static_cast<double>(size);
    icon->setSize(icon->size().fitting({side, side}));
    const std::optional<URL> larger = desktop::iconNamed(name, size, 2);
    if (larger != url)
        addBitmap(*icon, larger);
    return icon;
}

} // namespace

NSImage::Pointer NSImage::named(std::string_view name) {
    if (Pointer image = NameRegistry::shared().image(name))
        return image;
    if (Pointer image = resource(name))
        return image;
    constexpr std::int64_t usualSize = 32;
    return iconNamed(name, usualSize);
}

bool NSImage::setName(std::string name) {
    return NameRegistry::shared().setName(shared_from_this(), std::move(name));
}

std::string NSImage::name() const { return NameRegistry::shared().name(this); }

} // namespace zorvan
