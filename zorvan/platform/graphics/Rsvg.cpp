#include <zorvan/platform/foundation/LibraryLog.h>
#include <zorvan/platform/graphics/internal/Rsvg.h>

#include <dlfcn.h>
#include <optional>
#include <type_traits>

namespace zorvan {

namespace {

std::optional<Rsvg> loaded() {
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
    const bool hasAll =
        find(rsvg.open, "rsvg_handle_new_from_data") &&
        find(rsvg.size, "rsvg_handle_get_intrinsic_size_in_pixels") &&
        find(rsvg.dimensions, "rsvg_handle_get_intrinsic_dimensions") &&
        find(rsvg.render, "rsvg_handle_render_document") && find(rsvg.release, "g_object_unref") &&
        find(rsvg.createSurface, "cairo_image_surface_create_for_data") &&
        find(rsvg.destroySurface, "cairo_surface_destroy") &&
        find(rsvg.createContext, "cairo_create") && find(rsvg.destroyContext, "cairo_destroy") &&
        find(rsvg.newStop, "g_cancellable_new") && find(rsvg.stop, "g_cancellable_cancel");
    find(rsvg.setStop, "rsvg_handle_set_cancellable_for_rendering");
    return hasAll ? std::optional(rsvg) : std::nullopt;
}

} // namespace

const Rsvg* Rsvg::shared() {
    static const std::optional<Rsvg> library = loaded();
    return library ? &*library : nullptr;
}

} // namespace zorvan
