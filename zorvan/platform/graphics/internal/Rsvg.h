#pragma once

#include <gio/gio.h>
#include <librsvg/rsvg.h>

namespace zorvan {

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
    static const Rsvg* shared();
};

} // namespace zorvan
