#include <zorvan/hosts/gtkmodels/GtkRowModel.h>

#include <gtk/gtk.h>
#include <utility>

namespace zorvan {

using Text = std::function<std::string(void*)>;

GtkListItemFactory* GtkRowModel::textFactory(Text text) {
    GtkListItemFactory* factory = gtk_signal_list_item_factory_new();
    const auto setUp = +[](GtkListItemFactory*, GtkListItem* item, gpointer) {
        GtkWidget* label = gtk_label_new(nullptr);
        gtk_label_set_xalign(GTK_LABEL(label), 0);
        gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_END);
        gtk_list_item_set_child(item, label);
    };
    // No exception can pass through GTK.
    const auto bind = +[](GtkListItemFactory*, GtkListItem* item, gpointer made) noexcept {
        const std::string text = (*static_cast<const Text*>(made))(gtk_list_item_get_item(item));
        gtk_label_set_text(GTK_LABEL(gtk_list_item_get_child(item)), text.c_str());
    };
    const auto release = +[](gpointer made, GClosure*) { delete static_cast<Text*>(made); };
    g_signal_connect(factory, "setup", G_CALLBACK(setUp), nullptr);
    g_signal_connect_data(factory, "bind", G_CALLBACK(bind), new Text(std::move(text)), release,
                          GConnectFlags{});
    return factory;
}

} // namespace zorvan
