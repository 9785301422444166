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
    static const guint source = g_unix_fd_add(MainQueue::fileDescriptor(), G_IO_IN, drain, nullptr);
    static_cast<void>(source);
}

} // namespace zorvan
