#include <zorvan/hosts/gtkmodels/GLibMainQueue.h>

#include <zorvan/platform/dispatch/MainQueue.h>

#include <glib-unix.h>

namespace zorvan {

void GLibMainQueue::attach() {
    // No exception can pass through GLib: one that leaves a block ends the program.
    const GUnixFDSourceFunc drain = [](gint, GIOCondition, gpointer) noexcept -> gboolean {
        MainQueue::drain();
        return G_SOURCE_CONTINUE;
    };
    static GSource* const source = g_unix_fd_source_new(MainQueue::fileDescriptor(), G_IO_IN);
    if (g_source_get_context(source))
        return;
    g_source_set_callback(source, G_SOURCE_FUNC(drain), nullptr, nullptr);
    g_source_set_can_recurse(source, TRUE); // or a loop that a block runs would wait for others
    g_source_attach(source, nullptr);
}

} // namespace zorvan
