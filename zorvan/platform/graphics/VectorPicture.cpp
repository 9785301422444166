#include <zorvan/platform/graphics/VectorPicture.h>

#include <zorvan/platform/foundation/LibraryLog.h>
#include <zorvan/platform/foundation/internal/readRegularFile.h>
#include <zorvan/platform/foundation/internal/timeOf.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <functional>
#include <future>
#include <gio/gio.h>
#include <librsvg/rsvg.h>
#include <pthread.h>
#include <string_view>
#include <sys/mman.h>

namespace zorvan {

namespace {

/// librsvg and what it draws with, loaded when they are needed: they would more than double the
/// time that a program takes to start.
struct Rsvg {
    decltype(&rsvg_handle_new_from_data) open = nullptr;
    decltype(&rsvg_handle_get_intrinsic_size_in_pixels) size = nullptr;
    decltype(&rsvg_handle_get_intrinsic_dimensions) dimensions = nullptr;
    decltype(&rsvg_handle_render_document) render = nullptr;
    decltype(&g_object_unref) release = nullptr;
    decltype(&cairo_image_surface_create_for_data) createSurface = nullptr;
    decltype(&cairo_surface_destroy) destroySurface = nullptr;
    decltype(&cairo_create) createContext = nullptr;
    decltype(&cairo_destroy) destroyContext = nullptr;
    decltype(&g_cancellable_new) newStop = nullptr;
    decltype(&g_cancellable_cancel) stop = nullptr;
    /// From librsvg 2.60 on; null before.
    void (*setStop)(RsvgHandle* handle, GCancellable* stop) = nullptr;

    /// Null when the machine has none.
    static const Rsvg* shared() {
        static const std::optional<Rsvg> library = loaded();
        return library ? &*library : nullptr;
    }

private:
    static std::optional<Rsvg> loaded() {
        void* const library = ::dlopen("librsvg-2.so.2", RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
        if (!library) {
            LibraryLog::write({LibraryLog::Level::warning, "libraries", ::dlerror()});
            return std::nullopt;
        }
        const auto find = [&](auto& function, const char* name) {
            function = reinterpret_cast<std::decay_t<decltype(function)>>(::dlsym(library, name));
            return function != nullptr;
        };
        Rsvg rsvg;
        const bool hasAll = find(rsvg.open, "rsvg_handle_new_from_data") &&
                            find(rsvg.size, "rsvg_handle_get_intrinsic_size_in_pixels") &&
                            find(rsvg.dimensions, "rsvg_handle_get_intrinsic_dimensions") &&
                            find(rsvg.render, "rsvg_handle_render_document") &&
                            find(rsvg.release, "g_object_unref") &&
                            find(rsvg.createSurface, "cairo_image_surface_create_for_data") &&
                            find(rsvg.destroySurface, "cairo_surface_destroy") &&
                            find(rsvg.createContext, "cairo_create") &&
                            find(rsvg.destroyContext, "cairo_destroy") &&
                            find(rsvg.newStop, "g_cancellable_new") &&
                            find(rsvg.stop, "g_cancellable_cancel");
        find(rsvg.setStop, "rsvg_handle_set_cancellable_for_rendering");
        return hasAll ? std::optional(rsvg) : std::nullopt;
    }
};

/// How much of a processor some work may take, and what ends it then; nothing does when that is
/// empty.
struct TimeLimit {
    std::chrono::nanoseconds time;
    std::function<void()> stop;
};

void watch(pthread_t thread, const std::future<void>& end, const TimeLimit& limit) {
    using namespace std::chrono_literals;
    clockid_t clock = {};
    if (!limit.stop || ::pthread_getcpuclockid(thread, &clock) != 0)
        return;
    for (std::chrono::nanoseconds left = limit.time; left > 0s;
         left = limit.time - internal::timeOf(clock))
        if (end.wait_for(std::max<std::chrono::nanoseconds>(left, 1ms)) ==
            std::future_status::ready)
            return;
    limit.stop();
}

constexpr std::size_t leastStack = 8 << 20, pageSize = 4096;

/// Runs it on a thread with a stack of so many bytes, of which what is used takes memory, or of
/// fewer where the process may not have so many. False, without having run it, when there is no
/// thread to be had.
bool runOnStack(std::size_t byteCount, const std::function<void()>& work, const TimeLimit& limit) {
    std::packaged_task<void()> task(work);
    const std::future<void> end = task.get_future();
    const auto map = [&byteCount] {
        return ::mmap(nullptr, byteCount, PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    };
    void* stack = map();
    for (; stack == MAP_FAILED && byteCount > leastStack; stack = map())
        byteCount = std::max(leastStack, byteCount / 2 / pageSize * pageSize);
    if (stack == MAP_FAILED)
        return false;
    constexpr std::size_t guard = 1 << 16; // below which it must not grow
    pthread_attr_t attributes;
    pthread_t thread = {};
    ::pthread_attr_init(&attributes);
    ::pthread_attr_setstack(&attributes, stack, byteCount);
    const auto run = [](void* given) -> void* {
        (*static_cast<std::packaged_task<void()>*>(given))();
        return nullptr;
    };
    const bool runs = ::mprotect(stack, guard, PROT_NONE) == 0 &&
                      ::pthread_create(&thread, &attributes, run, &task) == 0;
    if (runs) {
        watch(thread, end, limit);
        ::pthread_join(thread, nullptr);
    }
    ::pthread_attr_destroy(&attributes);
    ::munmap(stack, byteCount);
    return runs;
}

/// librsvg follows each reference on the stack, some 6 to 12 KiB of it for each element on the way.
/// From 2.60 on it refuses long chains by itself; before, this is room for more than a hundred
/// thousand elements. A very small document needs no more than any thread has.
bool runWithRoom(std::size_t documentSize, const std::function<void()>& work,
                 const TimeLimit& limit) {
    constexpr std::size_t small = 512, usual = 1 << 30, stackOfByte = 2048;
    if (documentSize > small || limit.stop)
        return runOnStack(std::max(usual, documentSize * stackOfByte / pageSize * pageSize), work,
                          limit);
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
    // What is compressed, in part or whole, has no length that its bytes bound.
    return !text.starts_with("\x1F\x8B") &&
           (start.find("<svg") != start.npos || start.find(":svg") != start.npos);
}

/// Whether an entity holds elements, or might by way of another: a document of few bytes would nest
/// without bounds.
bool hasEntitiesOfElements(std::string_view text) {
    constexpr std::string_view declaration = "<!ENTITY";
    for (std::size_t at = text.find(declaration); at != text.npos;
         at = text.find(declaration, at)) {
        at = text.find_first_of("%\"'>", at + declaration.size());
        if (at == text.npos || text[at] == '%')
            return true;
        const std::size_t end = text.find(text[at], at + 1);
        const std::string_view value = text.substr(at, end - at);
        if (value.find('<') != value.npos || value.find("&#") != value.npos)
            return true;
    }
    return false;
}

} // namespace

std::shared_ptr<const VectorPicture> VectorPicture::create(std::span<const std::byte> bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const bool isCandidate =
        bytes.size() <= maximumByteCount && looksLikeSVG(text) && !hasEntitiesOfElements(text);
    const Rsvg* const rsvg = isCandidate ? Rsvg::shared() : nullptr;
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
    return std::shared_ptr<const VectorPicture>(new VectorPicture(handle, size, bytes.size()));
}

std::shared_ptr<const VectorPicture> VectorPicture::create(const std::string& path) {
    const std::optional<std::string> text = internal::readRegularFile(path, maximumByteCount);
    return text ? create(std::as_bytes(std::span(*text))) : nullptr;
}

bool VectorPicture::isSupported() { return Rsvg::shared() != nullptr; }

std::optional<Bitmap> VectorPicture::drawn(std::int64_t width, std::int64_t height) const {
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
    const RsvgRectangle all{0, 0, static_cast<double>(width), static_cast<double>(height)};
    auto* const handle = static_cast<RsvgHandle*>(handle_.get());
    gboolean isDrawn = FALSE;
    const auto render = [&] { isDrawn = rsvg.render(handle, cairo.get(), &all, nullptr); };
    TimeLimit limit{longest(width * height, byteCount_), {}};
    if (const std::shared_ptr<GCancellable> stop = makeStop(rsvg, handle))
        limit.stop = [&rsvg, stop] { rsvg.stop(stop.get()); };
    if (!runWithRoom(byteCount_, render, limit) || !isDrawn)
        return std::nullopt;
    turnIntoRgba(*bitmap);
    return bitmap;
}

} // namespace zorvan
