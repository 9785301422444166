// A filter typed over a list with a selection, beside GTK's own filter and selection models, with
// what a view asks after each letter.

#include <zorvan/hosts/gtkmodels/GtkListModel.h>

#include <benchmark/benchmark.h>
#include <gtk/gtk.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

using namespace zorvan;

namespace {

constexpr guint rowCount = 100'000;
constexpr guint selectedCount = 1000;
constexpr guint visibleCount = 50;

std::vector<std::string> names() {
    std::vector<std::string> names;
    for (guint i = 0; i < rowCount; ++i)
        names.push_back("item " + std::to_string(i));
    return names;
}

class Ours {
public:
    Ours()
        : list_(ManagedList<std::string>::create(names())),
          model_(GtkListModel<std::string>::create(list_)) {}
    ~Ours() { g_object_unref(model_); }

    GtkSelectionModel* model() { return model_; }
    void type(const std::string& letters) {
        list_->setFilter(
            [letters](const std::string& name) { return name.find(letters) != std::string::npos; });
    }
    void clear() { list_->setFilter({}); }

private:
    const std::shared_ptr<ManagedList<std::string>> list_;
    GtkSelectionModel* const model_;
};

class Gtk {
public:
    Gtk() {
        GtkStringList* list = gtk_string_list_new(nullptr);
        for (const std::string& name : names())
            gtk_string_list_append(list, name.c_str());
        filter_ = gtk_custom_filter_new(
            [](gpointer item, gpointer letters) -> gboolean {
                const char* name = gtk_string_object_get_string(GTK_STRING_OBJECT(item));
                return std::strstr(name, static_cast<std::string*>(letters)->c_str()) != nullptr;
            },
            &letters_, nullptr);
        auto* filtered = gtk_filter_list_model_new(G_LIST_MODEL(list), GTK_FILTER(filter_));
        model_ = GTK_SELECTION_MODEL(gtk_multi_selection_new(G_LIST_MODEL(filtered)));
    }
    ~Gtk() { g_object_unref(model_); }

    GtkSelectionModel* model() { return model_; }
    void type(const std::string& letters) {
        letters_ = letters;
        gtk_filter_changed(GTK_FILTER(filter_), GTK_FILTER_CHANGE_DIFFERENT);
    }
    void clear() { type(""); }

private:
    std::string letters_;
    GtkCustomFilter* filter_;
    GtkSelectionModel* model_;
};

void readRows(GtkSelectionModel* model) {
    const guint count = std::min(visibleCount, g_list_model_get_n_items(G_LIST_MODEL(model)));
    for (guint row = 0; row < count; ++row) {
        gpointer item = g_list_model_get_item(G_LIST_MODEL(model), row);
        benchmark::DoNotOptimize(gtk_selection_model_is_selected(model, row));
        g_object_unref(item);
    }
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

/// "1", "12", and nothing again.
template <class Side>
void keystrokes(benchmark::State& state) {
    Side side;
    GtkBitset* rows = gtk_bitset_new_empty();
    for (guint i = 0; i < selectedCount; ++i)
        gtk_bitset_add(rows, i * (rowCount / selectedCount));
    GtkBitset* all = gtk_bitset_new_range(0, rowCount);
    for (auto _ : state) {
        state.PauseTiming();
        gtk_selection_model_set_selection(side.model(), rows, all);
        state.ResumeTiming();
        side.type("1");
        readRows(side.model());
        side.type("12");
        readRows(side.model());
        side.clear();
        readRows(side.model());
    }
    gtk_bitset_unref(all);
    gtk_bitset_unref(rows);
}

BENCHMARK(keystrokes<Ours>)->Name("keystrokes, ours")->Unit(benchmark::kMillisecond);
BENCHMARK(keystrokes<Gtk>)->Name("keystrokes, GtkFilterListModel")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
