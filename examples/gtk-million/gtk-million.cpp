// A GtkColumnView over a managed list of a million rows: type to filter; what is selected stays
// selected.

#include <zorvan/hosts/gtkmodels/GtkListModel.h>

#include <gtk/gtk.h>
#include <memory>
#include <string>
#include <vector>

using namespace zorvan;

struct Star {
    std::int64_t number;
    double magnitude;
    friend bool operator==(const Star&, const Star&) = default;
};

static std::string name(const Star& star) { return "Star " + std::to_string(star.number); }
static std::string magnitude(const Star& star) {
    return std::to_string(star.magnitude).substr(0, 4);
}

static std::shared_ptr<ManagedList<Star>> stars() {
    std::vector<Star> stars;
    for (std::int64_t i = 0; i < 1'000'000; ++i)
        stars.push_back({i, static_cast<double>(i * 7919 % 1000) / 100});
    return ManagedList<Star>::create(std::move(stars));
}

/// What the signals of the window need; it lives as long as the program.
struct Program {
    const std::shared_ptr<ManagedList<Star>> list = stars();
    const char* picture = nullptr; // where to draw one
    GtkWidget* window = nullptr;
    GtkWidget* search = nullptr;
};

static void filter(GtkEditable* search, Program* program) {
    program->list->setFilter(
        [letters = std::string(gtk_editable_get_text(search))](const Star& star) {
            return name(star).find(letters) != std::string::npos;
        });
}

static void addColumn(GtkWidget* view, const char* title, std::string (*text)(const Star&)) {
    GtkColumnViewColumn* column =
        gtk_column_view_column_new(title, GtkListModel<Star>::textFactory(text));
    gtk_column_view_column_set_expand(column, TRUE);
    gtk_column_view_append_column(GTK_COLUMN_VIEW(view), column);
    g_object_unref(column);
}

/// Draws the window as the guide shows it, and ends.
static gboolean drawPicture(gpointer data) {
    auto* program = static_cast<Program*>(data);
    GdkPaintable* paintable = gtk_widget_paintable_new(program->window);
    GtkSnapshot* snapshot = gtk_snapshot_new();
    gdk_paintable_snapshot(paintable, snapshot, gtk_widget_get_width(program->window),
                           gtk_widget_get_height(program->window));
    GskRenderNode* node = gtk_snapshot_free_to_node(snapshot);
    g_object_unref(paintable);
    if (!node)
        return G_SOURCE_CONTINUE; // a busy machine has not drawn it yet
    GdkTexture* texture = gsk_renderer_render_texture(
        gtk_native_get_renderer(GTK_NATIVE(program->window)), node, nullptr);
    gdk_texture_save_to_png(texture, program->picture);
    g_object_unref(texture);
    gsk_render_node_unref(node);
    gtk_window_destroy(GTK_WINDOW(program->window));
    return G_SOURCE_REMOVE;
}

static void activate(GtkApplication* application, Program* program) {
    GtkWidget* view = gtk_column_view_new(GtkListModel<Star>::create(program->list));
    addColumn(view, "Name", name);
    addColumn(view, "Magnitude", magnitude);
    GtkWidget* scrolled = gtk_scrolled_window_new();
    gtk_scrolled_window_set_child(GTK_SCROLLED_WINDOW(scrolled), view);
    gtk_widget_set_vexpand(scrolled, TRUE);

    program->search = gtk_search_entry_new();
    g_signal_connect(program->search, "search-changed", G_CALLBACK(filter), program);
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
    gtk_box_append(GTK_BOX(box), program->search);
    gtk_box_append(GTK_BOX(box), scrolled);

    program->window = gtk_application_window_new(application);
    gtk_window_set_title(GTK_WINDOW(program->window), "A million stars");
    gtk_window_set_default_size(GTK_WINDOW(program->window), 420, 400);
    gtk_window_set_child(GTK_WINDOW(program->window), box);
    gtk_window_present(GTK_WINDOW(program->window));

    // With the name of a picture: shows what the guide shows.
    if (program->picture) {
        program->list->setSelection({207, 507, 508, 1007});
        gtk_editable_set_text(GTK_EDITABLE(program->search), "07");
        g_timeout_add(2000, drawPicture, program);
    }
}

int main(int count, char** arguments) {
    Program program;
    if (count > 1)
        program.picture = arguments[1];
    GtkApplication* application =
        gtk_application_new("org.example.GtkMillion", G_APPLICATION_NON_UNIQUE);
    g_signal_connect(application, "activate", G_CALLBACK(activate), &program);
    const int status = g_application_run(G_APPLICATION(application), 1, arguments);
    g_object_unref(application);
    return status;
}
