#include <zorvan/platform/graphics/VectorPicture.h>

#include <zorvan/platform/foundation/internal/readRegularFile.h>
#include <zorvan/platform/graphics/internal/Rsvg.h>
#include <zorvan/platform/graphics/internal/SvgReach.h>
#include <zorvan/platform/graphics/internal/runOnStack.h>

#include <chrono>
#include <cstring>
#include <string_view>

namespace zorvan {

namespace {

/// Beyond what pictures are made of; as many take a gigabyte of stack.
constexpr std::int64_t maximumReach = 1 << 16;

/// librsvg takes some 4 to 7 KiB of stack for each element on the way. A picture of few needs no
/// more than any thread has.
bool runWithRoom(std::int64_t reach, const std::function<void()>& work, const TimeLimit& limit) {
    constexpr std::int64_t few = 16;
    constexpr std::size_t stackOfElement = 16 << 10, base = 8 << 20;
    if (reach > few || limit.stop)
        return runOnStack(base + static_cast<std::size_t>(reach) * stackOfElement, work, limit);
    work();
    return true;
}

/// Ends the next drawing with that handle when it is cancelled; null where librsvg has no such
/// thing.
std::shared_ptr<GCancellable> makeStop(const Rsvg& rsvg, RsvgHandle* handle) {
    if (!rsvg.setStop)
        return nullptr;
    const std::shared_ptr<GCancellable> stop(rsvg.newStop(), rsvg.release);
    rsvg.setStop(handle, stop.get());
    return stop;
}

/// Far more than drawings take of that many pixels, and documents of that many bytes.
std::chrono::nanoseconds longest(std::int64_t pixels, std::size_t documentSize) {
    return std::chrono::seconds(2) + std::chrono::microseconds(2) * pixels +
           std::chrono::microseconds(2) * documentSize;
}

CGSize sizeOf(const Rsvg& rsvg, RsvgHandle* handle) {
    double width = 0, height = 0;
    if (rsvg.size(handle, &width, &height))
        return {width, height};
    gboolean hasWidth = 0, hasHeight = 0, hasBox = 0;
    RsvgLength ignored{};
    RsvgRectangle box{};
    rsvg.dimensions(handle, &hasWidth, &ignored, &hasHeight, &ignored, &hasBox, &box);
    return hasBox ? CGSize(box.width, box.height) : CGSize();
}

/// From the order that the pixels are drawn in: numbers with the alpha on top.
void turnIntoRgba(Bitmap& bitmap) {
    for (std::int64_t i = 0; i < bitmap.byteCount(); i += 4) {
        std::uint32_t pixel;
        std::uint8_t* const bytes = bitmap.data() + i;
        std::memcpy(&pixel, bytes, sizeof pixel);
        for (int c = 0; c < 3; ++c)
            bytes[c] = static_cast<std::uint8_t>(pixel >> (16 - 8 * c));
        bytes[3] = static_cast<std::uint8_t>(pixel >> 24);
    }
}

bool looksLikeSVG(std::string_view text) {
    constexpr std::size_t head = 4096; // comments and declarations may come before
    const std::string_view start = text.substr(0, head);
    return start.find("<svg") != start.npos || start.find(":svg") != start.npos;
}

} // namespace

std::shared_ptr<const VectorPicture> VectorPicture::create(std::span<const std::byte> bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (bytes.size() > maximumByteCount || !looksLikeSVG(text))
        return nullptr;
    const std::int64_t reach = svgReach(bytes).value_or(maximumReach + 1);
    const Rsvg* const rsvg = reach <= maximumReach ? Rsvg::shared() : nullptr;
    if (!rsvg)
        return nullptr;
    const std::shared_ptr<RsvgHandle> handle(
        rsvg->open(reinterpret_cast<const guint8*>(bytes.data()), bytes.size(), nullptr),
        [rsvg](RsvgHandle* opened) {
            if (opened)
                rsvg->release(opened);
        });
    const CGSize size = handle ? sizeOf(*rsvg, handle.get()) : CGSize();
    if (!(size.width > 0 && size.height > 0))
        return nullptr;
    return std::shared_ptr<const VectorPicture>(
        new VectorPicture(handle, size, bytes.size(), reach));
}

std::shared_ptr<const VectorPicture> VectorPicture::create(const std::string& path) {
    const std::optional<std::string> text = internal::readRegularFile(path, maximumByteCount);
    return text ? create(std::as_bytes(std::span(*text))) : nullptr;
}

bool VectorPicture::isSupported() { return Rsvg::shared() != nullptr; }

std::optional<Bitmap> VectorPicture::drawn(std::int64_t width, std::int64_t height) const {
    return drawn(CGSize(static_cast<double>(width), static_cast<double>(height)),
                 {0, 0, width, height});
}

std::optional<Bitmap> VectorPicture::drawn(CGSize size, const PixelRect& part) const {
    const std::int64_t width = part.width, height = part.height;
    constexpr std::int64_t maximumSide = 32000; // of a surface of Cairo's
    if (width > maximumSide || height > maximumSide)
        return std::nullopt;
    std::optional<Bitmap> bitmap = Bitmap::make(width, height);
    if (!bitmap)
        return std::nullopt;
    const Rsvg& rsvg = *Rsvg::shared();
    const std::unique_ptr<cairo_surface_t, decltype(rsvg.destroySurface)> surface(
        rsvg.createSurface(bitmap->data(), CAIRO_FORMAT_ARGB32, static_cast<int>(width),
                           static_cast<int>(height), static_cast<int>(bitmap->bytesPerRow())),
        rsvg.destroySurface);
    const std::unique_ptr<cairo_t, decltype(rsvg.destroyContext)> cairo(
        rsvg.createContext(surface.get()), rsvg.destroyContext);
    const RsvgRectangle all{-static_cast<double>(part.x), -static_cast<double>(part.y), size.width,
                            size.height};
    auto* const handle = static_cast<RsvgHandle*>(handle_.get());
    gboolean isDrawn = FALSE;
    const auto render = [&] { isDrawn = rsvg.render(handle, cairo.get(), &all, nullptr); };
    TimeLimit limit{longest(width * height, byteCount_), {}};
    if (const std::shared_ptr<GCancellable> stop = makeStop(rsvg, handle))
        limit.stop = [&rsvg, stop] { rsvg.stop(stop.get()); };
    if (!runWithRoom(reach_, render, limit) || !isDrawn)
        return std::nullopt;
    turnIntoRgba(*bitmap);
    return bitmap;
}

} // namespace zorvan
